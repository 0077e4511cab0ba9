package io.kez;

import java.io.File;
import java.io.IOException;
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
 * past moments that were followed by a gap-free day. A forecaster made with {@code new} saves
 * nothing; one made with {@link #open(File)} keeps every report in a journal file and, opened
 * again with that file after a restart, forecasts exactly as if it had never stopped. Close the
 * forecaster to free its memory (about 30 days of 10-minute steps and the adaptive forecaster's
 * 58 KB) and to sync and close its journal;
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

  private Forecaster(long handle) {
    this.handle = handle;
  }

  /**
   * Opens a forecaster that keeps its reports in {@code journal}: creates the file when missing
   * (its folder must exist; keep it in the app's files directory, {@code
   * context.getFilesDir()}), replays it when present, and from then on appends every report
   * taken. Each report is in the operating system's hands when {@link #report} returns, so a
   * kill of the app loses nothing; it reaches the disk every hour of reports, on {@link #sync()}
   * and on {@link #close()}, so a power cut loses at most the reports since the last sync.
   * A full disk is no error here: the reports are kept in memory and written as soon as
   * possible ({@link #unsafeReports()}).
   *
   * @throws JournalException when the file is not a journal or is of a newer version (it was
   *     left unchanged), or another open forecaster has it ({@link JournalException#reason()})
   * @throws IOException when the file cannot be created or read
   */
  public static Forecaster open(File journal) throws IOException {
    Objects.requireNonNull(journal, "journal");
    int[] status = {JournalException.CANNOT_OPEN};
    long h = AdaptiveNative.kezAdaptiveOpen(journal.getPath(), status);
    if (h != 0) return new Forecaster(h);
    switch (status[0]) {
      case JournalException.LOCKED:
        throw new JournalException(JournalException.Reason.LOCKED, journal,
            "another open forecaster has this journal; close it first (one forecaster per file)");
      case JournalException.NOT_JOURNAL:
        throw new JournalException(JournalException.Reason.NOT_JOURNAL, journal,
            "the file is not a forecaster's journal and was left unchanged; use another file, "
                + "or delete it if it is a lost journal");
      case JournalException.NEWER_VERSION:
        throw new JournalException(JournalException.Reason.NEWER_VERSION, journal,
            "the journal was written by a newer version of the library and was left unchanged; "
                + "update the library, or use another file");
      case JournalException.NO_MEMORY:
        throw new OutOfMemoryError("kez: no memory for a forecaster");
      default:
        throw new IOException("kez: cannot create or read the journal " + journal
            + "; check that its folder exists and is writable (use the app's files directory)");
    }
  }

  /**
   * Puts every report taken so far on the disk. Call it when the app goes to the background
   * (onStop). Does nothing for a forecaster without a journal.
   *
   * @return true when done; false when the disk is full or writing failed (the reports stay in
   *     memory and the next report or sync writes them)
   */
  public synchronized boolean sync() {
    return AdaptiveNative.kezAdaptiveSync(live()) == 0;
  }

  /**
   * Reports taken but not yet safely on the disk: written since the last sync, or held in
   * memory after a failed write. What a power cut now would lose; 0 without a journal.
   */
  public synchronized long unsafeReports() {
    return AdaptiveNative.kezAdaptiveJournalCount(live(), 0);
  }

  /** Reports the journal replayed when this forecaster was opened; 0 without a journal. */
  public synchronized long replayedReports() {
    return AdaptiveNative.kezAdaptiveJournalCount(live(), 3);
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

  /**
   * Frees the native instance and everything it learned, after syncing and closing the journal
   * when it has one. Idempotent.
   */
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
