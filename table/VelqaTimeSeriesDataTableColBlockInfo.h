// VelqaTimeSeriesDataTableColBlockInfo: where the columns of one column type
// sit in a VelqaTimeSeriesDataTable.
//
// The block's columns are cols[first .. first + count - 1] of the table. Both
// fields start at 0; a block whose `count` is 0 has no position, and its
// `first` means nothing until its first column is inserted.
#ifndef KEZ_TABLE_VELQATIMESERIESDATATABLECOLBLOCKINFO_H_
#define KEZ_TABLE_VELQATIMESERIESDATATABLECOLBLOCKINFO_H_

#include "kez/export.h"

class KEZ_EXPORT VelqaTimeSeriesDataTableColBlockInfo {
 public:
  int first = 0;  // index of the block's first column
  int count = 0;  // number of columns in the block

  VelqaTimeSeriesDataTableColBlockInfo();
  virtual ~VelqaTimeSeriesDataTableColBlockInfo();
};

#endif  // KEZ_TABLE_VELQATIMESERIESDATATABLECOLBLOCKINFO_H_
