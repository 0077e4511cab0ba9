package io.kez;

/**
 * The library's {@code kez_forecast_find} for forecasts that Java holds: the one rule by which
 * {@link Forecast#firstStep} and the command-line tools find "when will it reach 20 %", "when
 * empty", "when full" and "when charging".
 *
 * <p>Loading this class loads the native library through {@link KezInterface}.
 */
final class ForecastNative {
  static {
    try {
      Class.forName(KezInterface.class.getName(), true, ForecastNative.class.getClassLoader());
    } catch (ClassNotFoundException e) {
      throw new ExceptionInInitializerError(e);
    }
  }

  private ForecastNative() {}

  /**
   * The first step index k (0 to {@code levelsPercent.length - 1}) that meets {@code query}, or
   * -1 when none does.
   *
   * <p>Step k is handed to {@code kez_forecast_find} as the forecast record {level =
   * {@code levelsPercent[k] / 100.0}, charging = {@code charging[k]}}, both computed in double
   * from the floats (a charging array shorter than the levels counts its missing chances as 0).
   * The record compares exactly, inclusively and in double: level &lt;= threshold, level &gt;=
   * threshold or charging &gt;= threshold. So {@code threshold} is in the record's units: a level
   * fraction for the two level queries (a caller that holds percent passes {@code percent /
   * 100.0}), a chance from 0 to 1 for the charging query. A level of 20.3 % has not reached 20 %;
   * 20 % has.
   *
   * <p>Never throws: a null array, an unknown query or a failed allocation gives -1.
   *
   * @param query {@code KEZ_QUERY_LEVEL_AT_OR_BELOW} (0), {@code KEZ_QUERY_LEVEL_AT_OR_ABOVE}
   *     (1) or {@code KEZ_QUERY_CHARGING_AT_OR_ABOVE} (2); see {@link StepQuery#query()}
   */
  static native int kezForecastFind(float[] levelsPercent, float[] charging, int query,
      double threshold);
}
