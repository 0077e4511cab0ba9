package io.kez;

import java.util.Objects;

/**
 * A battery forecaster: one native instance that learns from the status the app reports and
 * forecasts the coming hours.
 *
 * <p>Report the phone's status at least every 10 minutes (every 5 is good), also when nothing
 * changed: a 10-minute step without a report is a gap, and a forecast of a day learns only from
 * past moments that were followed by a gap-free day. Nothing is saved; after a restart feed the
 * history again. Close the forecaster to free its memory (about 30 days of 10-minute steps);
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
    handle = KezInterface.kezCreate();
    if (handle == 0) throw new OutOfMemoryError("kez: no memory for a forecaster");
  }

  /** The native library's version text. */
  public static String version() {
    return KezInterface.kezGetVersion();
  }

  /** Reports the battery level (0 to 100) and whether the phone is charging at {@code timeMs}. */
  public void report(long timeMs, float levelPercent, boolean charging) {
    report(timeMs, levelPercent, charging, 0f, 0f, 0f, 0.0, 0.0, 0.0);
  }

  /**
   * Reports a full status sample. The auxiliary readings are passed on as they are; the counts
   * are compressed logarithmically (countA to log10, countB1 + countB2 to log100; 1 and less
   * count as 0). Which device readings go into them is the app's choice, but it must stay the
   * same for the life of the forecaster. Samples must come in time order.
   */
  public synchronized void report(long timeMs, float levelPercent, boolean charging, float aux1,
      float aux2, float aux3, double countA, double countB1, double countB2) {
    KezInterface.kezAddStatusValue(live(), timeMs, levelPercent, charging ? 1.0f : 0.0f, aux1,
        aux2, aux3, countA, countB1, countB2);
  }

  /** Reports a status sample as one comma-separated line of the app's status log. */
  public synchronized void reportLine(String line) {
    Objects.requireNonNull(line, "line");
    KezInterface.kezAddStatusValue(live(), line);
  }

  /** Forecasts the next day ({@link #STEPS_PER_DAY} steps). */
  public Forecast forecast(Variant variant) {
    return forecast(variant, STEPS_PER_DAY);
  }

  /**
   * Forecasts {@code steps} 10-minute steps; step k is (k + 1) x 10 minutes after the last
   * report. Changes nothing the forecaster has learned.
   */
  public synchronized Forecast forecast(Variant variant, int steps) {
    Objects.requireNonNull(variant, "variant");
    if (steps < 0) throw new IllegalArgumentException("steps < 0: " + steps);
    float[] levels = new float[steps];
    float[] charging = new float[steps];
    float distance = KezInterface.kezPredict(live(), variant.mode(), levels, charging);
    return new Forecast(variant, levels, charging, distance);
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
    if (h != 0) KezInterface.kezStop(h);
  }

  private long live() {
    if (handle == 0) throw new IllegalStateException("kez: forecaster is closed");
    return handle;
  }
}
