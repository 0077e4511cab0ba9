#include "table/VelqaTimeSeriesDataTableColBlockInfo.h"

VelqaTimeSeriesDataTableColBlockInfo::VelqaTimeSeriesDataTableColBlockInfo() {}

VelqaTimeSeriesDataTableColBlockInfo::~VelqaTimeSeriesDataTableColBlockInfo() {}
