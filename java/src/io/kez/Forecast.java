package io.kez;

import java.time.Duration;
import java.util.AbstractList;
import java.util.Arrays;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Optional;

/**
 * One forecast: for each 10-minute step the battery level in percent and the chance that the
 * phone is charging, plus how well the present resembled the past.
 *
 * <p>Step k (from 0) is the moment (k + 1) x 10 minutes after the last reported sample. The
 * derived answers ({@link #firstStep}, {@link #timeUntilEmpty}, ...) are found by the C
 * library's {@code kez_forecast_find}, the function the command-line tools use too: the first
 * step that meets an inclusive test, or none. It compares exactly, in double: the level held
 * here divided by 100 against the threshold in percent divided by 100, so a level of 20.3 % has
 * not reached 20 % (whatever a display rounded to whole percent would show), and 20.0 % has.
 * Immutable.
 */
public final class Forecast {
  /** Minutes per forecast step. */
  public static final int STEP_MINUTES = 10;
  /** The {@link #distance()} of a forecast made without any similar past moment. */
  public static final float NO_SIMILAR_PAST = 100.0f;

  /** One step of a forecast. */
  public static final class Step {
    private final int index;
    private final float levelPercent;
    private final float chargingChance;

    Step(int index, float levelPercent, float chargingChance) {
      this.index = index;
      this.levelPercent = levelPercent;
      this.chargingChance = chargingChance;
    }

    /** Index k of the step, from 0. */
    public int index() {
      return index;
    }

    /** Minutes after the last reported sample: (k + 1) x 10. */
    public long minutesAhead() {
      return Forecast.minutesAhead(index);
    }

    /** Forecast battery level, 0 to 100. */
    public float levelPercent() {
      return levelPercent;
    }

    /** Chance that the phone is charging, 0 to 1. */
    public float chargingChance() {
      return chargingChance;
    }

    @Override
    public String toString() {
      return "+" + minutesAhead() + " min: " + levelPercent + " %, charging " + chargingChance;
    }
  }

  private static final String[] NO_METHODS = new String[0];
  private static final double[] NO_WEIGHTS = new double[0];

  private final Variant variant;
  private final float[] levels;
  private final float[] charging;
  private final float distance;
  private final String[] methods;
  private final double[] levelWeights;     // per step, methods.length each
  private final double[] chargingWeights;  // the same, free adaptive forecasts only

  /** A forecast of the built-in model alone (no weights). */
  Forecast(Variant variant, float[] levels, float[] charging, float distance) {
    this(variant, levels, charging, distance, NO_METHODS, NO_WEIGHTS, NO_WEIGHTS);
  }

  /** An adaptive forecast with the weights it was combined with. */
  Forecast(Variant variant, float[] levels, float[] charging, float distance, String[] methods,
      double[] levelWeights, double[] chargingWeights) {
    this.variant = variant;
    this.levels = levels;
    this.charging = charging;
    this.distance = distance;
    this.methods = methods;
    this.levelWeights = levelWeights;
    this.chargingWeights = chargingWeights;
  }

  /** Minutes after the last reported sample at which step {@code step} stands. */
  public static long minutesAhead(int step) {
    return (step + 1L) * STEP_MINUTES;
  }

  /** The question this forecast answers. */
  public Variant variant() {
    return variant;
  }

  /** Number of steps. */
  public int size() {
    return levels.length;
  }

  /** Level of step {@code step} in percent, 0 to 100. */
  public float levelPercent(int step) {
    return levels[step];
  }

  /** Charging chance of step {@code step}, 0 to 1. */
  public float chargingChance(int step) {
    return charging[step];
  }

  /**
   * The mean distance of the similar past moments the forecast was made from, with 100
   * counted in: smaller is more alike; exactly {@link #NO_SIMILAR_PAST} when none was found and
   * the forecast extrapolates the phone's recent charge and discharge rates. A forecast of no
   * steps carries no distance: 0.
   */
  public float distance() {
    return distance;
  }

  /** The steps, in order, as a read-only list. */
  public List<Step> steps() {
    return new AbstractList<Step>() {
      @Override
      public Step get(int i) {
        return new Step(i, levels[i], charging[i]);
      }

      @Override
      public int size() {
        return levels.length;
      }
    };
  }

  /**
   * The first step index that meets {@code query} with {@code threshold} (percent for levels, 0
   * to 1 for the charging chance), or -1 when no step does. The test is inclusive and exact:
   * {@code kez_forecast_find} compares {@code levelPercent(k) / 100.0} with {@code threshold /
   * 100.0} (both in double) for the level queries, and {@code chargingChance(k)} with {@code
   * threshold} for the charging query. The values are the floats Java received, so only a level
   * within float rounding of the threshold (about a millionth of a percent) can be answered
   * otherwise than by C code that holds the library's doubles.
   */
  public int firstStep(StepQuery query, double threshold) {
    double nativeThreshold = query.isLevel() ? threshold / 100.0 : threshold;
    return ForecastNative.kezForecastFind(levels, charging, query.query(), nativeThreshold);
  }

  /** Time from the last sample until the first step that meets the query; empty when none does. */
  public Optional<Duration> timeUntil(StepQuery query, double threshold) {
    int k = firstStep(query, threshold);
    return k < 0 ? Optional.<Duration>empty() : Optional.of(Duration.ofMinutes(minutesAhead(k)));
  }

  /** Time until the level falls to {@code percent} or below. */
  public Optional<Duration> timeUntilLevelAtOrBelow(float percent) {
    return timeUntil(StepQuery.LEVEL_AT_OR_BELOW, percent);
  }

  /** Time until the level rises to {@code percent} or above. */
  public Optional<Duration> timeUntilLevelAtOrAbove(float percent) {
    return timeUntil(StepQuery.LEVEL_AT_OR_ABOVE, percent);
  }

  /** Time until the battery is empty (0 %); most telling on a {@link Variant#WITHOUT_CHARGING} forecast. */
  public Optional<Duration> timeUntilEmpty() {
    return timeUntilLevelAtOrBelow(0.0f);
  }

  /**
   * Time until the battery is full (100 %); most telling on a {@link Variant#CHARGING_STARTING}
   * forecast, or on a free one while the phone is charging.
   */
  public Optional<Duration> timeUntilFull() {
    return timeUntilLevelAtOrAbove(100.0f);
  }

  /** Time until the phone is more likely charging than not (chance 0.5 or more). */
  public Optional<Duration> timeUntilCharging() {
    return timeUntil(StepQuery.CHARGING_AT_OR_ABOVE, 0.5);
  }

  /**
   * True when the forecast was combined by the adaptive forecaster ({@link Forecaster#forecast});
   * false for the built-in model's own ({@link Forecaster#forecastRaw}).
   */
  public boolean isAdaptive() {
    return methods.length > 0;
  }

  /**
   * The ways of forecasting the adaptive forecaster weighs, by name: "instance" (the built-in
   * model), "persistence", "running_rates", "yesterday", "last_week", "charging_habit",
   * "charge_curve". Empty for a forecast of the built-in model alone.
   */
  public List<String> methods() {
    return Collections.unmodifiableList(Arrays.asList(methods));
  }

  /**
   * The weights with which the level of step {@code step} was combined, by method (0 to 1,
   * together 1; methods that did not take part are left out). Empty when the forecast is not
   * adaptive.
   */
  public Map<String, Double> levelWeights(int step) {
    return weights(levelWeights, step);
  }

  /**
   * The weights with which the chance of charging of step {@code step} was combined, as {@link
   * #levelWeights}; only a free adaptive forecast combines it (the other variants force it for
   * a day), otherwise empty.
   */
  public Map<String, Double> chargingWeights(int step) {
    return weights(chargingWeights, step);
  }

  private Map<String, Double> weights(double[] all, int step) {
    if (step < 0 || step >= levels.length) {
      throw new IndexOutOfBoundsException("step " + step + " of " + levels.length);
    }
    Map<String, Double> out = new LinkedHashMap<>();
    int base = step * methods.length;
    if (base + methods.length > all.length) return out;
    for (int m = 0; m < methods.length; m++) {
      if (all[base + m] > 0.0) out.put(methods[m], all[base + m]);
    }
    return Collections.unmodifiableMap(out);
  }

  @Override
  public String toString() {
    return "Forecast[" + variant + (isAdaptive() ? ", adaptive" : "") + ", " + levels.length
        + " steps, distance " + distance + "]";
  }
}
