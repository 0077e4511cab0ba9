package io.kez;

import java.util.Objects;

/**
 * A battery forecaster: one native adaptive forecaster that learns from the status the app
 * reports and forecasts the coming hours.
 *
 * <p>{@link #forecast} gives the adaptive forecast: the library weighs several ways of
 * forecasting (the built-in model's own forecast, persistence, the running charge and discharge
 * rates, the same hours yesterday and last week, the user's charging habit and charge curve) by
 * how well each has done for this phone at each horizon, and the {@link Forecast} says which
 * weights it used. {@link #forecastRaw} gives the built-in model's own forecast from the same
 * reports, exactly as {@link KezInterface#kezPredict} does.
 *
 * <p>Report the phone's status at least every 10 minutes (every 5 is good), also when nothing
 * changed: a 10-minute step without a report is a gap, and a forecast of a day learns only from
 * past moments that were followed by a gap-free day. Nothing is saved; after a restart feed the
 * history again. Close the forecaster to free its memory (about 30 days of 10-minute steps and
 * the adaptive forecaster's 58 KB);
 * closing twice is harmless, any other use after closing throws {@link IllegalStateException}.
 * The methods are synchronized, so one forecaster may be shared between threads.
 *
 * <pre>{@code
 * try (Forecaster forecaster = new Forecaster()) {
 *   // every 5 minutes, from a timer or a battery broadcast:
 *   forecaster.report(System.currentTimeMillis(), 57f, false);
 *   // whenever the app wants to show something:
 *   Forecast day = forecaster.forecast(Variant.FREE);              // next 24 hours
 *   float inThreeHours = day.levelPercent(17);                      // step 17 = +180 min
 *   Optional<Duration> empty =
 *       forecaster.forecast(Variant.WITHOUT_CHARGING).timeUntilEmpty();
 *   Optional<Duration> full =
 *       forecaster.forecast(Variant.CHARGING_STARTING).timeUntilFull();
 * }
 * }</pre>
 */
public final class Forecaster implements AutoCloseable {
  /** Steps of a day: the default forecast length. */
  public static final int STEPS_PER_DAY = 144;

  private long handle;

  /** Creates a forecaster with the built-in model and an empty memory. */
  public Forecaster() {
    handle = AdaptiveNative.kezAdaptiveCreate();
    if (handle == 0) throw new OutOfMemoryError("kez: no memory for a forecaster");
  }

  /** The native library's version text. */
  public static String version() {
    return KezInterface.kezGetVersion();
  }

  /**
   * Reports the battery level (0 to 100) and whether the phone is charging at {@code timeMs}.
   *
   * @return true when the sample was taken
   */
  public boolean report(long timeMs, float levelPercent, boolean charging) {
    return report(timeMs, levelPercent, charging, 0f, 0f, 0f, 0.0, 0.0, 0.0);
  }

  /**
   * Reports a full status sample. The auxiliary readings are passed on as they are; the counts
   * are compressed logarithmically (countA to log10, countB1 + countB2 to log100; 1 and less
   * count as 0). Which device readings go into them is the app's choice, but it must stay the
   * same for the life of the forecaster. Samples must come in time order: a sample up to an
   * hour older than the last one is ignored (one more than an hour older is taken as the clock
   * having jumped back), and so is one with a value that is not finite.
   *
   * @return true when the sample was taken
   */
  public synchronized boolean report(long timeMs, float levelPercent, boolean charging,
      float aux1, float aux2, float aux3, double countA, double countB1, double countB2) {
    return AdaptiveNative.kezAdaptiveReport(live(), timeMs, levelPercent,
        charging ? 1.0f : 0.0f, aux1, aux2, aux3, countA, countB1, countB2) == 1;
  }

  /**
   * Reports a status sample as one comma-separated line of the app's status log.
   *
   * @return true when the sample was taken
   */
  public synchronized boolean reportLine(String line) {
    Objects.requireNonNull(line, "line");
    return AdaptiveNative.kezAdaptiveReportLine(live(), line) == 1;
  }

  /** Forecasts the next day ({@link #STEPS_PER_DAY} steps). */
  public Forecast forecast(Variant variant) {
    return forecast(variant, STEPS_PER_DAY);
  }

  /**
   * The adaptive forecast of {@code steps} 10-minute steps; step k is (k + 1) x 10 minutes after
   * the last report. It carries the weights it was combined with ({@link
   * Forecast#levelWeights}). Changes nothing the forecaster has learned.
   */
  public synchronized Forecast forecast(Variant variant, int steps) {
    return make(variant, steps, false);
  }

  /** The built-in model's own forecast of the next day ({@link #STEPS_PER_DAY} steps). */
  public Forecast forecastRaw(Variant variant) {
    return forecastRaw(variant, STEPS_PER_DAY);
  }

  /**
   * The built-in model's own forecast of {@code steps} steps from the same reports, exactly as
   * {@link KezInterface#kezPredict} gives it; it carries no weights.
   */
  public synchronized Forecast forecastRaw(Variant variant, int steps) {
    return make(variant, steps, true);
  }

  /**
   * How many forecasts of {@code variant} the forecaster has scored at one hour so far: until a
   * few dozen, weights tuned on simulated users count for more than this phone's own record.
   */
  public synchronized long scoredForecasts(Variant variant) {
    Objects.requireNonNull(variant, "variant");
    return AdaptiveNative.kezAdaptiveScored(live(), variant.mode());
  }

  private Forecast make(Variant variant, int steps, boolean raw) {
    Objects.requireNonNull(variant, "variant");
    if (steps < 0) throw new IllegalArgumentException("steps < 0: " + steps);
    long h = live();
    float[] levels = new float[steps];
    float[] charging = new float[steps];
    float distance = AdaptiveNative.kezAdaptivePredict(h, variant.mode(), raw, levels, charging);
    if (raw) return new Forecast(variant, levels, charging, distance);
    String[] methods = methodNames();
    double[] levelWeights = new double[steps * methods.length];
    AdaptiveNative.kezAdaptiveWeights(h, variant.mode(), 0, levelWeights);
    double[] chargingWeights = new double[0];
    if (variant == Variant.FREE) {
      chargingWeights = new double[steps * methods.length];
      AdaptiveNative.kezAdaptiveWeights(h, variant.mode(), 1, chargingWeights);
    }
    return new Forecast(variant, levels, charging, distance, methods, levelWeights,
        chargingWeights);
  }

  private static String[] methodNames;

  private static synchronized String[] methodNames() {
    if (methodNames == null) methodNames = AdaptiveNative.kezAdaptiveMethodNames();
    return methodNames;
  }

  /** True once {@link #close()} was called. */
  public synchronized boolean isClosed() {
    return handle == 0;
  }

  /** Frees the native instance and everything it learned. Idempotent. */
  @Override
  public synchronized void close() {
    long h = handle;
    handle = 0;
    if (h != 0) AdaptiveNative.kezAdaptiveStop(h);
  }

  private long live() {
    if (handle == 0) throw new IllegalStateException("kez: forecaster is closed");
    return handle;
  }
}
