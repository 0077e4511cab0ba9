// VelqaTimeSeriesDataTableColInfo: one column of a VelqaTimeSeriesDataTable.
//
// The column is itself the list of its float values, one per row in row
// order; the fields after the list describe it. `colType` indexes the column
// type names ("Observation", "State Index", "Expectation Output",
// "Recognized Index", "Unknown") and equals the index of the block that holds
// the column. `valueType` 0 is Numerical, anything else Discrete. `stream` is
// the stream of a numerical observation column (-1 = none); `indexInStream`
// is set by the table's stream rebuild.
//
// `max` and `min` are a display range, not the data range: UpdateStatistics()
// widens the data range by a margin (see there). The copy constructor copies
// the values and every field.
#ifndef KEZ_TABLE_VELQATIMESERIESDATATABLECOLINFO_H_
#define KEZ_TABLE_VELQATIMESERIESDATATABLECOLINFO_H_

#include "foundation/FList.h"
#include "foundation/FString.h"
#include "kez/export.h"

class KEZ_EXPORT VelqaTimeSeriesDataTableColInfo : public vorn::FListT<float> {
 public:
  vorn::FString name;      // column name
  int colType = 0;         // column type = block index
  int valueType = 0;       // 0 Numerical, non-zero Discrete
  int stream = -1;         // stream of a numerical observation column, -1 none
  int indexInStream = -1;  // position within its stream, -1 before a rebuild
  float max = 1.0f;        // upper end of the display range
  float min = 0.0f;        // lower end of the display range
  double mean = 0.0;       // mean of the values
  double stdev = 0.0;      // population standard deviation of the values

  VelqaTimeSeriesDataTableColInfo();
  VelqaTimeSeriesDataTableColInfo(const VelqaTimeSeriesDataTableColInfo& other);
  VelqaTimeSeriesDataTableColInfo& operator=(
      const VelqaTimeSeriesDataTableColInfo& other);
  ~VelqaTimeSeriesDataTableColInfo() override;

  // Recomputes the display range, mean and deviation from the values.
  //
  // No values: range 0..1, mean 0.5, deviation 1.0. Otherwise the range is
  // the data range (for a Discrete column never narrower than 0..1) widened
  // by a display margin: Numerical by a tenth of its width on both sides, or
  // by +1.0 at the top when all values are equal; Discrete by 0.49999899 on
  // both sides so that integer states sit in the middle of their bins.
  //
  // The sum for the mean deliberately starts from the mean held before the
  // call instead of 0: a second call on unchanged values adds the first mean
  // divided by the row count. Reset `mean` to 0 first to get the plain mean.
  void UpdateStatistics();
};

#endif  // KEZ_TABLE_VELQATIMESERIESDATATABLECOLINFO_H_
