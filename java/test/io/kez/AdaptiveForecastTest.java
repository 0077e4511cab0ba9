package io.kez;

import static org.junit.Assert.assertArrayEquals;
import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertFalse;
import static org.junit.Assert.assertTrue;

import java.util.Arrays;
import java.util.Map;
import org.junit.Test;

/**
 * The adaptive forecast through a real JVM: it is the default, it says how it was made, the
 * built-in model's own forecast stays reachable and equals KezInterface's, and bad samples are
 * refused. Run with -Xcheck:jni.
 */
public class AdaptiveForecastTest {
  private static final String[] METHODS = {"instance", "persistence", "running_rates",
      "yesterday", "last_week", "charging_habit", "charge_curve"};

  @Test
  public void forecastsAreAdaptiveAndSayHowTheyWereMade() {
    try (Forecaster f = new Forecaster()) {
      for (String[] r : new SyntheticLog(9).rows) ForecasterTest.report(f, r);
      assertTrue(f.scoredForecasts(Variant.FREE) > 100);
      for (Variant v : Variant.values()) {
        Forecast adaptive = f.forecast(v);
        assertTrue(adaptive.isAdaptive());
        assertEquals(Arrays.asList(METHODS), adaptive.methods());
        assertTrue(adaptive.toString().contains("adaptive"));
        for (int k = 0; k < adaptive.size(); k++) {
          double sum = 0;
          for (double w : adaptive.levelWeights(k).values()) {
            assertTrue(w > 0 && w <= 1);
            sum += w;
          }
          assertEquals(1.0, sum, 1e-9);
          float level = adaptive.levelPercent(k);
          assertTrue(level >= 0f && level <= 100f);
        }
        Map<String, Double> charging = adaptive.chargingWeights(30);
        if (v == Variant.FREE) {
          assertTrue(charging.containsKey("charging_habit"));
        } else {
          assertTrue(charging.isEmpty());
        }
      }
      // The built-in model takes part in every variant; the charge curve only when plugged in.
      assertTrue(f.forecast(Variant.FREE).levelWeights(10).containsKey("instance"));
      assertFalse(f.forecast(Variant.FREE).levelWeights(10).containsKey("charge_curve"));
      Forecast raw = f.forecastRaw(Variant.FREE);
      assertFalse(raw.isAdaptive());
      assertTrue(raw.methods().isEmpty());
      assertTrue(raw.levelWeights(0).isEmpty());
    }
  }

  @Test
  public void theRawForecastIsTheBuiltInModelsOwn() {
    long h = KezInterface.kezCreate();
    try (Forecaster f = new Forecaster()) {
      for (String[] r : new SyntheticLog(8).rows) {
        ForecasterTest.report(f, r);
        KezInterface.kezAddStatusValue(h, Long.parseLong(r[0]), Float.parseFloat(r[1]),
            Float.parseFloat(r[2]) > 0.5f ? 1f : 0f, Float.parseFloat(r[3]),
            Float.parseFloat(r[4]), Float.parseFloat(r[5]), Double.parseDouble(r[6]),
            Double.parseDouble(r[7]), Double.parseDouble(r[8]));
      }
      for (Variant v : Variant.values()) {
        float[] levels = new float[144];
        float[] charging = new float[144];
        float distance = KezInterface.kezPredict(h, v.mode(), levels, charging);
        Forecast raw = f.forecastRaw(v);
        assertEquals(distance, raw.distance(), 0f);
        float[] rawLevels = new float[144];
        float[] rawCharging = new float[144];
        for (int k = 0; k < 144; k++) {
          rawLevels[k] = raw.levelPercent(k);
          rawCharging[k] = raw.chargingChance(k);
        }
        assertArrayEquals(levels, rawLevels, 0f);
        assertArrayEquals(charging, rawCharging, 0f);
      }
    } finally {
      KezInterface.kezStop(h);
    }
  }

  @Test
  public void badSamplesAreRefusedAndLinesAreTaken() {
    try (Forecaster f = new Forecaster()) {
      long t = SyntheticLog.START_MS;
      assertTrue(f.report(t, 80f, false));
      assertFalse(f.report(t + 300000L, Float.NaN, false));
      assertFalse(f.report(t + 300000L, 79f, false, Float.POSITIVE_INFINITY, 0f, 0f, 0, 0, 0));
      assertFalse(f.report(t - 600000L, 79f, false)); // late by ten minutes
      assertTrue(f.reportLine((t + 600000L) + ",0,79,0"));
      Forecast day = f.forecast(Variant.FREE);
      for (int k = 0; k < day.size(); k++) {
        assertTrue(day.levelPercent(k) >= 0f && day.levelPercent(k) <= 100f);
      }
    }
  }
}
