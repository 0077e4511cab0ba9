#include "table/Spline.h"

#include "gtest/gtest.h"

namespace {

void AddKnots(Spline* s, std::initializer_list<std::pair<double, double>> xy) {
  for (const auto& p : xy) {
    SplineData_ k;
    k.x = p.first;
    k.y = p.second;
    s->knots.Add(k);
  }
}

TEST(Spline, KnownNaturalSplines) {
  Spline s;
  AddKnots(&s, {{0, 0}, {1, 1}, {2, 0}});
  ASSERT_EQ(1, s.Learn());
  EXPECT_EQ(2, s.segments);
  EXPECT_EQ(0.0, s.c[0]);
  EXPECT_EQ(-1.5, s.c[1]);
  EXPECT_EQ(0.0, s.c[2]);
  EXPECT_EQ(0.6875, s.GetData(0.5));
  EXPECT_EQ(0.6875, s.GetData(1.5));

  // Second derivatives solved by hand: 0, -4, 4, 0.
  Spline t;
  AddKnots(&t, {{0, 0}, {1, 1}, {2, 0}, {3, 1}});
  ASSERT_EQ(1, t.Learn());
  EXPECT_NEAR(0.75, t.GetData(0.5), 1e-12);
  EXPECT_NEAR(0.5, t.GetData(1.5), 1e-12);
  EXPECT_NEAR(0.25, t.GetData(2.5), 1e-12);
  EXPECT_NEAR(1.0, t.GetData(1.0), 1e-12);
}

TEST(Spline, SmoothAtInteriorKnots) {
  Spline s;
  AddKnots(&s, {{0, 1}, {0.5, 3}, {2, -1}, {2.25, 0}, {4, 2}});
  ASSERT_EQ(1, s.Learn());
  const double e = 1e-5;
  for (int i = 1; i < 4; ++i) {
    const double x = s.knots[i].x;
    const double y = s.GetData(x);
    EXPECT_NEAR(s.knots[i].y, y, 1e-12);
    EXPECT_NEAR((y - s.GetData(x - e)) / e, (s.GetData(x + e) - y) / e, 1e-3);
  }
}

TEST(Spline, TwoKnotsGiveTheStraightLine) {
  Spline s;
  AddKnots(&s, {{1, 2}, {3, 6}});
  ASSERT_EQ(1, s.Learn());
  EXPECT_EQ(4.0, s.GetData(2.0));
  EXPECT_EQ(5.0, s.GetData(2.5));
  EXPECT_EQ(0.0, s.c[0]);
  EXPECT_EQ(0.0, s.d[0]);
}

TEST(Spline, FlatOutsideTheKnots) {
  Spline s;
  AddKnots(&s, {{0, 7}, {1, 1}, {2, 3}});
  s.Learn();
  EXPECT_EQ(7.0, s.GetData(0.0));
  EXPECT_EQ(7.0, s.GetData(-5.0));
  EXPECT_EQ(3.0, s.GetData(2.5));
  EXPECT_EQ(3.0, s.GetData(99.0));
}

TEST(Spline, CursorFollowsQueriesInEitherDirection) {
  Spline s;
  AddKnots(&s, {{0, 0}, {1, 2}, {2, 1}, {3, 3}, {4, 0}, {5, 1}});
  s.Learn();
  double rising[50];
  for (int i = 0; i < 50; ++i) rising[i] = s.GetData(i * 0.1);
  EXPECT_EQ(4, s.cursor);
  // Backwards from the far end (at a knot either neighbour may answer).
  for (int i = 49; i >= 0; --i) {
    EXPECT_NEAR(rising[i], s.GetData(i * 0.1), 1e-12) << i;
  }
  EXPECT_EQ(0, s.cursor);
}

TEST(Spline, UnfittedSplinesReadZero) {
  Spline one;
  AddKnots(&one, {{1, 5}});
  EXPECT_EQ(0, one.Learn());
  EXPECT_EQ(0, one.segments);
  EXPECT_EQ(0.0, one.GetData(1.0));

  Spline s;
  AddKnots(&s, {{0, 1}, {1, 2}, {2, 4}});
  s.Learn();
  s.GetData(1.5);
  s.ClearFx();
  EXPECT_EQ(0, s.cursor);
  EXPECT_EQ(3, s.knots.count);
  EXPECT_EQ(0.0, s.GetData(0.5));
  // Knots added later count from the next Learn on.
  AddKnots(&s, {{3, 10}});
  EXPECT_EQ(1, s.Learn());
  EXPECT_EQ(10.0, s.GetData(3.0));
}

}  // namespace
