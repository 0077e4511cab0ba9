// SplineData_: one knot of a Spline, an abscissa `x` and an ordinate `y`.
//
// A plain record kept by value in vorn::FListT; the knots of one spline must
// be in strictly increasing order of `x`.
#ifndef KEZ_TABLE_SPLINEDATA_H_
#define KEZ_TABLE_SPLINEDATA_H_

struct SplineData_ {
  double x = 0.0;  // abscissa
  double y = 0.0;  // ordinate
};

#endif  // KEZ_TABLE_SPLINEDATA_H_
