package io.kez;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertTrue;

import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.time.Duration;
import java.util.ArrayList;
import java.util.List;
import java.util.Optional;
import org.junit.Rule;
import org.junit.Test;
import org.junit.rules.TemporaryFolder;

/**
 * The Java API answers "when will it reach 20 %, be empty, be full, be charging" exactly as the
 * C interface does (kez_forecast_find over the same forecast, as printed by kez-forecast-dump,
 * whose thresholds are the command-line tools' ones): on real forecasts, and on made-up ones with
 * levels exactly on a threshold and 0.3 % beside it. Run with -Xcheck:jni.
 */
public class ForecastAnswersTest {
  @Rule public TemporaryFolder dir = new TemporaryFolder();

  /** The query whose KEZ_QUERY_* constant is {@code code}. */
  private static StepQuery query(int code) {
    for (StepQuery q : StepQuery.values()) {
      if (q.query() == code) return q;
    }
    throw new AssertionError("no StepQuery for KEZ_QUERY " + code);
  }

  private static int step(Optional<Duration> time) {
    return time.isPresent() ? (int) (time.get().toMinutes() / Forecast.STEP_MINUTES) - 1 : -1;
  }

  /**
   * Every answer the C side gave ({query, threshold, index}) is Java's too, through
   * {@link Forecast#firstStep} with the threshold in percent and through the named answer an app
   * calls for that threshold.
   */
  private static void assertSameAnswers(String where, Forecast f, List<double[]> finds) {
    assertEquals(where, 5, finds.size());
    for (double[] find : finds) {
      StepQuery q = query((int) find[0]);
      double threshold = find[1];
      int want = (int) find[2];
      String what = where + " " + q + " " + threshold;
      double javaThreshold = q.isLevel() ? threshold * 100.0 : threshold;
      assertEquals(what, threshold, q.isLevel() ? javaThreshold / 100.0 : javaThreshold, 0.0);
      assertEquals(what, want, f.firstStep(q, javaThreshold));
      Optional<Duration> named;
      if (q == StepQuery.CHARGING_AT_OR_ABOVE && threshold == 0.5) {
        named = f.timeUntilCharging();
      } else if (q == StepQuery.LEVEL_AT_OR_BELOW && threshold == 0.0) {
        named = f.timeUntilEmpty();
      } else if (q == StepQuery.LEVEL_AT_OR_BELOW) {
        named = f.timeUntilLevelAtOrBelow((float) javaThreshold);
      } else if (q == StepQuery.LEVEL_AT_OR_ABOVE && threshold == 1.0) {
        named = f.timeUntilFull();
      } else {
        named = f.timeUntilLevelAtOrAbove((float) javaThreshold);
      }
      assertEquals(what, want, step(named));
    }
  }

  /** A forecast made up in C units, handed to Java as the binding converts it. */
  private Forecast madeUp(double[] levels, double[] charging, List<double[]> finds)
      throws Exception {
    List<String> lines = new ArrayList<>();
    float[] levelsPercent = new float[levels.length];
    float[] chances = new float[levels.length];
    for (int k = 0; k < levels.length; k++) {
      lines.add(levels[k] + " " + charging[k]);
      levelsPercent[k] = (float) (levels[k] * 100.0);
      chances[k] = (float) charging[k];
    }
    Path file = Files.write(dir.newFile().toPath(), lines, StandardCharsets.US_ASCII);
    ReferenceDump c = ReferenceDump.run(file, "--records");
    finds.addAll(c.finds);
    return new Forecast(Variant.FREE, levelsPercent, chances, 42f);
  }

  @Test
  public void knifeEdgesAnswerAsTheCInterface() throws Exception {
    // Falling: 20.3 % has not reached 20 %, 20 % has; 0.3 % is not empty; a charging chance of
    // 0.497 is not "charging".
    List<double[]> finds = new ArrayList<>();
    Forecast falling = madeUp(new double[] {0.25, 0.203, 0.2, 0.1, 0.003, 0.0},
        new double[] {0.0, 0.497, 0.5, 1.0, 1.0, 1.0}, finds);
    assertSameAnswers("falling", falling, finds);
    assertEquals(Optional.of(Duration.ofMinutes(30)), falling.timeUntilLevelAtOrBelow(20f));
    assertEquals(Optional.of(Duration.ofMinutes(60)), falling.timeUntilEmpty());
    assertEquals(Optional.of(Duration.ofMinutes(30)), falling.timeUntilCharging());
    assertEquals(Optional.empty(), falling.timeUntilFull());

    // Rising: 79.7 % has not reached 80 %, 80 % has; 99.7 % is not full, 100 % is.
    finds.clear();
    Forecast rising = madeUp(new double[] {0.5, 0.797, 0.8, 0.997, 1.0},
        new double[] {0.4999, 0.5, 1.0, 1.0, 1.0}, finds);
    assertSameAnswers("rising", rising, finds);
    assertEquals(Optional.of(Duration.ofMinutes(30)), rising.timeUntilLevelAtOrAbove(80f));
    assertEquals(Optional.of(Duration.ofMinutes(50)), rising.timeUntilFull());
    assertEquals(Optional.of(Duration.ofMinutes(20)), rising.timeUntilCharging());
    assertEquals(Optional.empty(), rising.timeUntilLevelAtOrBelow(20f));
  }

  @Test
  public void realForecastsAnswerAsTheCInterface() throws Exception {
    SyntheticLog log = new SyntheticLog(10);
    ReferenceDump c = ReferenceDump.run(log.writeCsv(dir.getRoot().toPath()));
    boolean sawFull = false;
    boolean sawEmpty = false;
    try (Forecaster f = new Forecaster()) {
      int row = 0;
      int checkpoint = 0;
      for (String[] r : log.rows) {
        ForecasterTest.report(f, r);
        if (++row % SyntheticLog.REPORTS_PER_DAY != 0) continue;
        ReferenceDump.Checkpoint cp = c.checkpoints.get(checkpoint++);
        for (Variant v : Variant.values()) {
          Forecast forecast = f.forecastRaw(v);
          assertSameAnswers("row " + row + " " + v, forecast,
              cp.variants.get(v.mode()).finds);
          sawFull |= forecast.timeUntilFull().isPresent();
          sawEmpty |= forecast.timeUntilEmpty().isPresent();
        }
      }
      assertEquals(c.checkpoints.size(), checkpoint);
    }
    // Full and empty are levels exactly on the threshold (the forecast stops at 100 % and 0 %).
    assertTrue("some forecast got full", sawFull);
    assertTrue("some forecast got empty", sawEmpty);
  }

  @Test
  public void nativeFindToleratesOddArguments() {
    float[] levels = {50f, 20.3f, 20f};
    float[] charging = {0f, 0.5f, 1f};
    int below = StepQuery.LEVEL_AT_OR_BELOW.query();
    int chargingQuery = StepQuery.CHARGING_AT_OR_ABOVE.query();
    assertEquals(2, ForecastNative.kezForecastFind(levels, charging, below, 0.2));
    assertEquals(-1, ForecastNative.kezForecastFind(null, charging, below, 0.2));
    assertEquals(-1, ForecastNative.kezForecastFind(levels, null, below, 0.2));
    assertEquals(-1, ForecastNative.kezForecastFind(new float[0], new float[0], below, 1.0));
    for (int unknown : new int[] {-1, 3, Integer.MIN_VALUE, Integer.MAX_VALUE}) {
      assertEquals(-1, ForecastNative.kezForecastFind(levels, charging, unknown, 0.0));
    }
    // A shorter charging array: the missing chances count as 0, the levels are all searched.
    assertEquals(2, ForecastNative.kezForecastFind(levels, new float[1], below, 0.2));
    assertEquals(0, ForecastNative.kezForecastFind(levels, new float[] {0.7f}, chargingQuery, 0.5));
    assertEquals(-1, ForecastNative.kezForecastFind(levels, new float[] {0f}, chargingQuery, 0.5));
    // NaN meets nothing; the arrays are left as they were.
    float[] nan = {Float.NaN, 10f};
    assertEquals(1, ForecastNative.kezForecastFind(nan, charging, below, 0.2));
    assertTrue(Float.isNaN(nan[0]));
    assertEquals(20.3f, levels[1], 0f);
  }
}
