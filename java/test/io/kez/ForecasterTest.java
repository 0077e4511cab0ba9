package io.kez;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertFalse;
import static org.junit.Assert.assertSame;
import static org.junit.Assert.assertTrue;
import static org.junit.Assert.fail;

import java.time.Duration;
import java.util.List;
import java.util.Optional;
import org.junit.Test;

/** The app developer's API: lifecycle, typed forecasts and the derived answers. */
public class ForecasterTest {
  static void report(Forecaster f, String[] r) {
    f.report(Long.parseLong(r[0]), Float.parseFloat(r[1]), Float.parseFloat(r[2]) > 0.5f,
        Float.parseFloat(r[3]), Float.parseFloat(r[4]), Float.parseFloat(r[5]),
        Double.parseDouble(r[6]), Double.parseDouble(r[7]), Double.parseDouble(r[8]));
  }

  @Test
  public void closesOnceAndRefusesUseAfterwards() {
    Forecaster f = new Forecaster();
    try (Forecaster same = f) {
      same.report(SyntheticLog.START_MS, 80f, false);
      assertFalse(same.isClosed());
    }
    assertTrue(f.isClosed());
    f.close(); // a second close is harmless
    try {
      f.report(SyntheticLog.START_MS + 300000L, 79f, false);
      fail("report after close");
    } catch (IllegalStateException expected) {
    }
    try {
      f.forecast(Variant.FREE);
      fail("forecast after close");
    } catch (IllegalStateException expected) {
    }
  }

  @Test
  public void forecastShapes() {
    try (Forecaster f = new Forecaster()) {
      assertEquals("1.04.21", Forecaster.version());
      f.report(SyntheticLog.START_MS, 50f, false);
      Forecast day = f.forecast(Variant.FREE);
      assertSame(Variant.FREE, day.variant());
      assertEquals(Forecaster.STEPS_PER_DAY, day.size());
      assertEquals(Forecast.NO_SIMILAR_PAST, day.distance(), 0f);
      List<Forecast.Step> steps = day.steps();
      assertEquals(144, steps.size());
      assertEquals(10L, steps.get(0).minutesAhead());
      assertEquals(1440L, steps.get(143).minutesAhead());
      assertEquals(day.levelPercent(17), steps.get(17).levelPercent(), 0f);
      Forecast none = f.forecast(Variant.CHARGING_STARTING, 0);
      assertEquals(0, none.size());
      assertEquals(0f, none.distance(), 0f);
      assertEquals(-1, none.firstStep(StepQuery.LEVEL_AT_OR_ABOVE, 0.0));
      try {
        f.forecast(Variant.FREE, -1);
        fail("negative step count");
      } catch (IllegalArgumentException expected) {
      }
    }
  }

  @Test
  public void variantsForceTheChargingStateForADay() {
    try (Forecaster f = new Forecaster()) {
      for (String[] r : new SyntheticLog(9).rows) report(f, r);
      Forecast off = f.forecast(Variant.WITHOUT_CHARGING, 200);
      Forecast on = f.forecast(Variant.CHARGING_STARTING, 200);
      for (int k = 0; k < 144; k++) {
        assertEquals(0f, off.chargingChance(k), 0f);
        assertEquals(1f, on.chargingChance(k), 0f);
        if (k > 0) assertTrue(off.levelPercent(k) <= off.levelPercent(k - 1));
        if (k > 0) assertTrue(on.levelPercent(k) >= on.levelPercent(k - 1));
      }
      assertTrue(on.timeUntilFull().isPresent());
      assertFalse(on.timeUntilEmpty().isPresent());
    }
  }

  @Test
  public void derivedAnswersFollowTheFindRules() {
    float[] levels = {40f, 30f, 20f, 20f, 10f, 0f, 0f};
    float[] charging = {0f, 0.25f, 0.5f, 0.75f, 0f, 0f, 1f};
    Forecast f = new Forecast(Variant.FREE, levels, charging, 42f);
    assertEquals(2, f.firstStep(StepQuery.LEVEL_AT_OR_BELOW, 20.0)); // inclusive
    assertEquals(0, f.firstStep(StepQuery.LEVEL_AT_OR_BELOW, 40.0));
    assertEquals(-1, f.firstStep(StepQuery.LEVEL_AT_OR_BELOW, -1.0));
    assertEquals(0, f.firstStep(StepQuery.LEVEL_AT_OR_ABOVE, 40.0));
    assertEquals(-1, f.firstStep(StepQuery.LEVEL_AT_OR_ABOVE, 40.5));
    assertEquals(2, f.firstStep(StepQuery.CHARGING_AT_OR_ABOVE, 0.5));
    assertEquals(6, f.firstStep(StepQuery.CHARGING_AT_OR_ABOVE, 1.0));
    assertEquals(Optional.of(Duration.ofMinutes(30)), f.timeUntilLevelAtOrBelow(20f));
    assertEquals(Optional.of(Duration.ofMinutes(60)), f.timeUntilEmpty());
    assertEquals(Optional.of(Duration.ofMinutes(30)), f.timeUntilCharging());
    assertEquals(Optional.empty(), f.timeUntilFull());
    assertEquals(Optional.of(Duration.ofMinutes(10)), f.timeUntilLevelAtOrAbove(35f));
  }
}
