package io.kez;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertNotEquals;
import static org.junit.Assert.fail;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Paths;
import java.util.Arrays;
import org.junit.Test;

/**
 * Every native method (of KezInterface, ForecastNative and AdaptiveNative), called 10^5 times
 * or more, must leave the process's native memory where it was: a JNI bridge that keeps a VM
 * copy of an array (released with JNI_COMMIT instead of mode 0 or JNI_ABORT) or of a string's
 * characters (never released) leaks that copy on every call, and the VM's own checks say
 * nothing about it.
 *
 * <p>The measure is the resident set (VmRSS of /proc/self/status). The test runs in a JVM of its
 * own with a fixed, pre-touched heap and the serial collector (java/CMakeLists.txt), so that the
 * Java heap adds nothing to the resident set once the calls begin. Each method is first called
 * 10^4 times (the compiler and the allocator settle), then 10^5 times more in ten rounds; after
 * each round the resident set may be at most {@link #BOUND_KB} above where it was after the
 * warm-up. The arrays and strings are large enough (4 KB and more per call) that a leak of one
 * copy per call passes the bound within the first round.
 */
public class NativeMemoryTest {
  private static final int WARM_UP = 10_000;
  private static final int ROUNDS = 10;
  private static final int CALLS_PER_ROUND = 10_000;
  private static final long BOUND_KB = 8 * 1024;
  private static final int STEPS = 1024;

  private static long residentKb() {
    try {
      for (String line : Files.readAllLines(Paths.get("/proc/self/status"),
          StandardCharsets.US_ASCII)) {
        if (line.startsWith("VmRSS:")) {
          return Long.parseLong(line.replaceAll("[^0-9]", ""));
        }
      }
    } catch (IOException e) {
      throw new AssertionError("cannot read /proc/self/status", e);
    }
    throw new AssertionError("no VmRSS in /proc/self/status");
  }

  private interface Call {
    void run(int i);
  }

  private static void assertNoGrowth(String what, Call call) {
    for (int i = 0; i < WARM_UP; i++) call.run(i);
    System.gc();
    long base = residentKb();
    int done = 0;
    long most = 0;
    for (int round = 0; round < ROUNDS; round++) {
      for (int k = 0; k < CALLS_PER_ROUND; k++) call.run(WARM_UP + done++);
      long grown = residentKb() - base;
      if (grown > BOUND_KB) {
        fail(what + ": native memory grew by " + grown + " KB in " + done
            + " calls (bound " + BOUND_KB + " KB)");
      }
      most = Math.max(most, grown);
    }
    System.out.println(what + ": " + done + " calls, resident set at most " + most
        + " KB above the start");
  }

  /** A live instance with a few samples: forecasts extrapolate, which is quick. */
  private static long instanceWithFewSamples() {
    long h = KezInterface.kezCreate();
    assertNotEquals(0L, h);
    for (int i = 0; i < 3; i++) {
      assertEquals(1, KezInterface.kezAddStatusValue(h, SyntheticLog.START_MS + i * 300000L,
          80f - i, 0f, 25f, 4f, 0f, 10.0, 3.0, 4.0));
    }
    return h;
  }

  @Test
  public void createAndStopFreeTheInstance() {
    assertNoGrowth("kezCreate + kezStop", i -> {
      long h = KezInterface.kezCreate();
      if (h == 0L) throw new AssertionError("kezCreate failed");
      KezInterface.kezStop(h);
    });
  }

  @Test
  public void versionStringsAreNotKeptNatively() {
    assertNoGrowth("kezGetVersion", i -> {
      if (KezInterface.kezGetVersion().length() != 7) throw new AssertionError("version");
    });
  }

  @Test
  public void statusLineCharactersAreReleased() {
    // A 30-column status line with a long text column, about 4 KB.
    char[] name = new char[4000];
    Arrays.fill(name, 'p');
    String tail = ",55,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,12,30,0,0,0,24.5,4.01,1,0,0,250";
    long h = KezInterface.kezCreate();
    assertNotEquals(0L, h);
    try {
      assertNoGrowth("kezAddStatusValue(line)", i -> {
        String line = (SyntheticLog.START_MS + i * 60000L) + "," + new String(name) + tail;
        // Half the lines go to the handle 0, which parses nothing but still takes the
        // characters from the VM.
        KezInterface.kezAddStatusValue((i & 1) == 0 ? h : 0L, line);
      });
    } finally {
      KezInterface.kezStop(h);
    }
  }

  @Test
  public void samplesAsValuesTakeNoMemory() {
    long h = KezInterface.kezCreate();
    assertNotEquals(0L, h);
    try {
      assertNoGrowth("kezAddStatusValue(values)", i -> {
        KezInterface.kezAddStatusValue(h, SyntheticLog.START_MS + i * 60000L, 50f + (i % 50),
            (i / 600) % 2, 25f, 4f, 0f, 10.0, 3.0, 4.0);
      });
    } finally {
      KezInterface.kezStop(h);
    }
  }

  @Test
  public void forecastArraysAreReleased() {
    long h = instanceWithFewSamples();
    float[] levels = new float[STEPS];
    float[] charging = new float[STEPS];
    try {
      // Modes 0 .. 2 forecast, 5 forecasts nothing; the handle 0 is refused. Every call pins
      // and releases both arrays.
      final int[] modes = {0, 1, 2, 5};
      assertNoGrowth("kezPredict", i -> {
        KezInterface.kezPredict(i % 5 == 4 ? 0L : h, modes[i % 4], levels, charging);
      });
    } finally {
      KezInterface.kezStop(h);
    }
  }

  /** An adaptive forecaster with a few reports. */
  private static long adaptiveWithFewReports() {
    long h = AdaptiveNative.kezAdaptiveCreate();
    assertNotEquals(0L, h);
    for (int i = 0; i < 3; i++) {
      AdaptiveNative.kezAdaptiveReport(h, SyntheticLog.START_MS + i * 300000L, 80f - i, 0f, 25f,
          4f, 0f, 10.0, 3.0, 4.0);
    }
    return h;
  }

  @Test
  public void adaptiveCreateAndStopFreeTheForecaster() {
    assertNoGrowth("kezAdaptiveCreate + kezAdaptiveStop", i -> {
      long h = AdaptiveNative.kezAdaptiveCreate();
      if (h == 0L) throw new AssertionError("kezAdaptiveCreate failed");
      AdaptiveNative.kezAdaptiveStop(h);
    });
  }

  @Test
  public void adaptiveReportsTakeNoMemory() {
    char[] name = new char[4000];
    Arrays.fill(name, 'p');
    String tail = ",55,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,12,30,0,0,0,24.5,4.01,1,0,0,250";
    long h = AdaptiveNative.kezAdaptiveCreate();
    assertNotEquals(0L, h);
    try {
      assertNoGrowth("kezAdaptiveReport + kezAdaptiveReportLine", i -> {
        long t = SyntheticLog.START_MS + i * 60000L;
        if ((i & 1) == 0) {
          AdaptiveNative.kezAdaptiveReport(h, t, 50f + (i % 50), (i / 600) % 2, 25f, 4f, 0f,
              10.0, 3.0, 4.0);
        } else {
          AdaptiveNative.kezAdaptiveReportLine((i & 2) == 0 ? h : 0L,
              t + "," + new String(name) + tail);
        }
      });
    } finally {
      AdaptiveNative.kezAdaptiveStop(h);
    }
  }

  @Test
  public void adaptiveForecastArraysAndNamesAreReleased() {
    long h = adaptiveWithFewReports();
    String[] names = AdaptiveNative.kezAdaptiveMethodNames();
    float[] levels = new float[STEPS];
    float[] charging = new float[STEPS];
    double[] weights = new double[STEPS * names.length];
    try {
      assertNoGrowth("kezAdaptivePredict + kezAdaptiveWeights + kezAdaptiveMethodNames"
          + " + kezAdaptiveScored", i -> {
        int variant = i % 3;
        AdaptiveNative.kezAdaptivePredict(i % 7 == 6 ? 0L : h, variant, (i & 1) == 0, levels,
            charging);
        AdaptiveNative.kezAdaptiveWeights(h, variant, (i >> 1) & 1, weights);
        AdaptiveNative.kezAdaptiveScored(h, variant);
        if (AdaptiveNative.kezAdaptiveMethodNames().length != names.length) {
          throw new AssertionError("method names");
        }
      });
    } finally {
      AdaptiveNative.kezAdaptiveStop(h);
    }
  }

  @Test
  public void findArraysAreReleased() {
    float[] levels = new float[STEPS];
    float[] charging = new float[STEPS];
    for (int k = 0; k < STEPS; k++) {
      levels[k] = 100f - 0.05f * k;
      charging[k] = k % 2;
    }
    assertNoGrowth("kezForecastFind", i -> {
      if (ForecastNative.kezForecastFind(levels, charging, i % 3, 0.2) < -1) {
        throw new AssertionError("find");
      }
    });
  }
}
