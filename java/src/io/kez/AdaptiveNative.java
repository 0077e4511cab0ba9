package io.kez;

/**
 * The native methods of the adaptive forecaster (the C functions kez_adaptive_*), for
 * {@link Forecaster}. Handles are the native forecaster's address; 0 is none. Nothing here
 * throws from native code: a null handle or array gives the functions' "nothing done" results.
 */
final class AdaptiveNative {
  static {
    try {
      Class.forName(KezInterface.class.getName(), true, AdaptiveNative.class.getClassLoader());
    } catch (ClassNotFoundException e) {
      throw new ExceptionInInitializerError(e);
    }
  }

  private AdaptiveNative() {}

  /** A new adaptive forecaster, or 0 when out of memory. */
  static native long kezAdaptiveCreate();

  /** kez_adaptive_report: 1 taken, 0 refused, -1 for the handle 0. */
  static native int kezAdaptiveReport(long handle, long timeMs, float levelPercent,
      float charging, float aux1, float aux2, float aux3, double countA, double countB1,
      double countB2);

  /** kez_adaptive_report_line. */
  static native int kezAdaptiveReportLine(long handle, String line);

  /**
   * Forecasts {@code levels.length} steps of {@code variant} (0 free, 1 not charged, 2 plugged
   * in), adaptive or (raw) the instance's own, into {@code levels} (percent) and {@code
   * charging}; returns element 0's distance, 100 when no forecast could be made.
   */
  static native float kezAdaptivePredict(long handle, int variant, boolean raw, float[] levels,
      float[] charging);

  /**
   * The weights of the methods at every step of a forecast of {@code variant} made now: {@code
   * what} 0 the level, 1 the chance of charging. Fills {@code weights} step by step, {@link
   * #kezAdaptiveMethodNames()}.length values a step, for as many whole steps as it holds;
   * returns the steps filled.
   */
  static native int kezAdaptiveWeights(long handle, int variant, int what, double[] weights);

  /** The methods' names, by index. */
  static native String[] kezAdaptiveMethodNames();

  /** Forecasts of {@code variant} scored at one hour so far. */
  static native long kezAdaptiveScored(long handle, int variant);

  static native void kezAdaptiveStop(long handle);

  /**
   * kez_adaptive_open: a forecaster with the journal at {@code path}, or 0; {@code status[0]}
   * receives 0 or the negative KEZ_JOURNAL_* code.
   */
  static native long kezAdaptiveOpen(String path, int[] status);

  /** kez_adaptive_sync: 0, a negative KEZ_JOURNAL_* code, -1 for the handle 0. */
  static native int kezAdaptiveSync(long handle);

  /** kez_adaptive_journal_count. */
  static native long kezAdaptiveJournalCount(long handle, int what);
}
