package io.kez;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertNotEquals;
import static org.junit.Assert.assertTrue;

import java.util.Arrays;
import org.junit.Test;

/**
 * Hostile values through the native methods (run with -Xcheck:jni): NaN and infinite levels and
 * counts, times of 0, -1 (2^64 - 1 as the library reads it) and Long.MIN_VALUE, time running
 * backwards, broken status lines, odd array lengths, and thousands of instances. Nothing may
 * crash the VM, leave a Java exception pending or stop an instance from answering. The values of
 * forecasts made after non-finite samples are not checked: nothing is validated on the way in.
 */
public class HostileValuesTest {
  private static final long MINUTE_MS = 60_000L;
  private static final long DAY_MS = 86_400_000L;
  private static final int[] MODES = {
      KezInterface.MODE_FREE, KezInterface.MODE_WITHOUT_CHARGING,
      KezInterface.MODE_CHARGING_STARTING};

  /** A plain routine: charged 23:00 to 07:00, discharged by day, 5-minute reports. */
  private static void feedRoutine(long h, long fromMs, int days) {
    for (long t = fromMs; t < fromMs + days * DAY_MS; t += 5 * MINUTE_MS) {
      double hour = (double) Math.floorMod(t, DAY_MS) / 3_600_000.0;
      boolean charging = hour >= 23.0 || hour < 7.0;
      float level = charging ? (float) (hour < 7.0 ? 40.0 + 8.0 * hour : 40.0)
          : (float) (96.0 - 3.5 * (hour - 7.0));
      assertEquals(1, KezInterface.kezAddStatusValue(h, t, level, charging ? 1f : 0f, 25f, 4f,
          0f, 10.0, 3.0, 4.0));
    }
  }

  /** Forecasts in every mode; the arrays must be written and, if asked, hold sane values. */
  private static void forecastAllModes(long h, int steps, boolean sane) {
    for (int mode : MODES) {
      float[] levels = new float[steps];
      float[] charging = new float[steps];
      Arrays.fill(levels, -7f);
      float distance = KezInterface.kezPredict(h, mode, levels, charging);
      for (int k = 0; k < steps; k++) {
        assertNotEquals("step " + k, -7f, levels[k], 0f);
        if (!sane) continue;
        assertTrue("level " + levels[k], levels[k] >= 0f && levels[k] <= 100f);
        assertTrue("charging " + charging[k], charging[k] >= 0f && charging[k] <= 1f);
      }
      if (sane) assertTrue("distance " + distance, distance >= 0f && !Float.isInfinite(distance));
    }
  }

  @Test
  public void extremeAndBackwardTimes() {
    long h = KezInterface.kezCreate();
    try {
      long start = 1_709_510_400_000L;
      feedRoutine(h, start, 3);
      long now = start + 3 * DAY_MS;
      long[] times = {0L, 1L, -1L, Long.MIN_VALUE, Long.MAX_VALUE, now - 2 * DAY_MS,
          now - 2 * DAY_MS, now};
      for (long t : times) {
        assertEquals(1, KezInterface.kezAddStatusValue(h, t, 55f, 0f, 25f, 4f, 0f, 10.0, 3.0,
            4.0));
        forecastAllModes(h, 36, true);
      }
      feedRoutine(h, now + DAY_MS, 2);
      forecastAllModes(h, 144, true);
    } finally {
      KezInterface.kezStop(h);
    }
  }

  @Test
  public void nonFiniteAndAbsurdValues() {
    long h = KezInterface.kezCreate();
    try {
      long t = 1_709_510_400_000L;
      feedRoutine(h, t, 2);
      t += 2 * DAY_MS;
      float[] floats = {Float.NaN, Float.POSITIVE_INFINITY, Float.NEGATIVE_INFINITY, -50f, 1e9f,
          Float.MAX_VALUE, -0f};
      double[] doubles = {Double.NaN, Double.POSITIVE_INFINITY, Double.NEGATIVE_INFINITY,
          Double.MAX_VALUE, -Double.MAX_VALUE, -0.0, 1e300};
      for (float f : floats) {
        for (double d : doubles) {
          t += MINUTE_MS;
          assertEquals(1, KezInterface.kezAddStatusValue(h, t, f, f, f, f, f, d, d, -d));
        }
        forecastAllModes(h, 12, false);
      }
      feedRoutine(h, t + MINUTE_MS, 2);
      forecastAllModes(h, 144, false);
    } finally {
      KezInterface.kezStop(h);
    }
  }

  @Test
  public void brokenStatusLines() {
    long h = KezInterface.kezCreate();
    try {
      StringBuilder commas = new StringBuilder();
      for (int i = 0; i < 5000; i++) commas.append(',');
      String[] lines = {"", ",", "7,7", "nan,x,nan,nan", "inf,x,-inf,1e999",
          "\u0000,\u0001,\uffff", "\ud83d\ude00,\u00e9,50,1", "1709510400000,x,50,1",
          commas.toString(), "1709510400000," + "9".repeat(1000) + ",5"};
      for (String line : lines) {
        KezInterface.kezAddStatusValue(h, line);
        forecastAllModes(h, 6, false);
      }
      feedRoutine(h, 1_709_600_000_000L, 2);
      forecastAllModes(h, 144, false);
    } finally {
      KezInterface.kezStop(h);
    }
  }

  @Test
  public void oddArraysAndModes() {
    long h = KezInterface.kezCreate();
    try {
      feedRoutine(h, 1_709_510_400_000L, 2);
      // A charging array shorter than the levels is written only as far as it reaches.
      float[] levels = new float[10];
      float[] charging = new float[3];
      for (int mode : MODES) {
        float distance = KezInterface.kezPredict(h, mode, levels, charging);
        assertTrue(distance >= 0f);
        for (float v : levels) assertTrue(v >= 0f && v <= 100f);
      }
      // A long forecast: far beyond the memory, so an extrapolation.
      float[] longLevels = new float[100_000];
      float[] longCharging = new float[100_000];
      assertEquals(100f, KezInterface.kezPredict(h, KezInterface.MODE_FREE, longLevels,
          longCharging), 0f);
      for (float v : longLevels) assertTrue(v >= 0f && v <= 100f);
      for (int mode : new int[] {Integer.MIN_VALUE, -1, 3, Integer.MAX_VALUE}) {
        assertEquals(0f, KezInterface.kezPredict(h, mode, new float[4], new float[4]), 0f);
      }
    } finally {
      KezInterface.kezStop(h);
    }
  }

  @Test
  public void thousandsOfInstances() {
    float[] levels = new float[4];
    float[] charging = new float[4];
    for (int i = 0; i < 2000; i++) {
      long h = KezInterface.kezCreate();
      assertNotEquals(0L, h);
      if (i % 100 == 0) {
        assertEquals(1, KezInterface.kezAddStatusValue(h, 1_709_510_400_000L, 50f, 0f, 0f, 0f,
            0f, 0.0, 0.0, 0.0));
        assertEquals(100f, KezInterface.kezPredict(h, KezInterface.MODE_FREE, levels, charging),
            0f);
      }
      KezInterface.kezStop(h);
    }
    long[] alive = new long[200];
    for (int i = 0; i < alive.length; i++) {
      alive[i] = KezInterface.kezCreate();
      assertNotEquals(0L, alive[i]);
    }
    for (long h : alive) KezInterface.kezStop(h);
  }
}
