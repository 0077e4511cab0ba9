package io.kez;

/**
 * The native methods of libkez, one to one.
 *
 * <p>This is the raw binding: handles are plain {@code long}s, forecasts come back in parallel
 * float arrays. Apps normally use {@link Forecaster}, which owns a handle, checks its use and
 * turns forecasts into {@link Forecast} objects. The methods never throw; a handle of 0 is
 * tolerated everywhere.
 *
 * <p>Loading this class loads the shared library {@code libkez.so} with
 * {@code System.loadLibrary("kez")}; set the system property {@code kez.library} to an absolute
 * file name to load that file instead.
 */
public final class KezInterface {
  /** {@link #kezPredict} mode: free forecast. */
  public static final int MODE_FREE = 0;
  /** {@link #kezPredict} mode: the phone is not charged during the next day. */
  public static final int MODE_WITHOUT_CHARGING = 1;
  /** {@link #kezPredict} mode: the phone is plugged in now, for the next day. */
  public static final int MODE_CHARGING_STARTING = 2;

  static {
    String file = System.getProperty("kez.library");
    if (file != null && !file.isEmpty()) {
      System.load(file);
    } else {
      System.loadLibrary("kez");
    }
  }

  private KezInterface() {}

  /** Creates an instance with the built-in model and an empty memory; 0 when out of memory. */
  public static native long kezCreate();

  /** The library's version text, "1.04.21". */
  public static native String kezGetVersion();

  /**
   * Reports one status sample as a comma-separated log line: time in ms in column 0, level % in
   * 2, charging in 3, countB1/countB2 in 19/20, aux1..aux3 in 24..26, countA in 29. A null line
   * or a handle of 0 is ignored.
   */
  public static native void kezAddStatusValue(long handle, String line);

  /**
   * Reports one status sample: Unix time in ms (taken as unsigned), level 0 to 100, charging 1.0
   * or 0.0, three auxiliary readings and three counts. Returns 1, or 0 for a handle of 0.
   */
  public static native int kezAddStatusValue(long handle, long timeMs, float levelPercent,
      float charging, float aux1, float aux2, float aux3, double countA, double countB1,
      double countB2);

  /**
   * Forecasts {@code levels.length} 10-minute steps; step k is (k + 1) x 10 minutes after the
   * last sample. Writes the level in percent into {@code levels} and the charging chance (0 to
   * 1) into {@code charging}, which must be at least as long. Returns the mean neighbour
   * distance: 100.0 when nothing similar was found (or the handle is 0, when both arrays are
   * zeroed). An unknown {@code mode} runs no forecast: both arrays become zeros and the result is
   * 0.0. With a live handle, empty (or null) arrays forecast nothing and give 0.0 as well.
   *
   * @param mode {@link #MODE_FREE}, {@link #MODE_WITHOUT_CHARGING} or
   *     {@link #MODE_CHARGING_STARTING}
   */
  public static native float kezPredict(long handle, int mode, float[] levels, float[] charging);

  /** Destroys the instance; a handle of 0 is ignored. The handle must not be used again. */
  public static native void kezStop(long handle);
}
