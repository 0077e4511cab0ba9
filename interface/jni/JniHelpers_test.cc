// The JNI layer's helpers that need no VM: the handle conversion and the
// forecast record buffer. The entry points themselves are tested through a
// real JVM (java/test).
#include <gtest/gtest.h>

#include <cstdint>

#include "interface/jni/ForecastRecords.h"
#include "interface/jni/JniHandle.h"

namespace {

using kez::jni::ForecastRecords;
using kez::jni::HandleFromJava;
using kez::jni::HandleToJava;

TEST(JniHandle, RoundTripsAndKeepsNullAsZero) {
  EXPECT_EQ(0, HandleToJava(nullptr));
  EXPECT_EQ(nullptr, HandleFromJava(0));
  int object = 0;
  EXPECT_EQ(static_cast<void*>(&object), HandleFromJava(HandleToJava(&object)));
  // A pointer with its top bit set stays the same pointer (zero-extended on
  // 32-bit machines, taken bit for bit on 64-bit ones).
  void* high = reinterpret_cast<void*>(~std::uintptr_t{0} - 15);
  EXPECT_EQ(high, HandleFromJava(HandleToJava(high)));
}

TEST(ForecastRecords, SizeHasOneRecordAtLeastAndSaturates) {
  const std::size_t one = sizeof(stMobilePowerPredictionData);
  EXPECT_EQ(one, ForecastRecords::BytesFor(0));
  EXPECT_EQ(one, ForecastRecords::BytesFor(1));
  EXPECT_EQ(10 * one, ForecastRecords::BytesFor(10));
  EXPECT_EQ(SIZE_MAX, ForecastRecords::BytesFor(SIZE_MAX / one + 1));
  EXPECT_EQ(SIZE_MAX, ForecastRecords::BytesFor(SIZE_MAX));
}

TEST(ForecastRecords, StartZeroedEvenForAnEmptyForecast) {
  ForecastRecords none(0);
  ASSERT_NE(nullptr, none.Data());
  EXPECT_EQ(0.0, none.Data()[0].level);
  EXPECT_EQ(0.0, none.Data()[0].charging);
  EXPECT_EQ(0.0, none.Data()[0].distance);
  ForecastRecords many(1000);
  ASSERT_NE(nullptr, many.Data());
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(0.0, many.Data()[i].distance);
}

}  // namespace
