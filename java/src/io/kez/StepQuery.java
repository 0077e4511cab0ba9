package io.kez;

/**
 * What {@link Forecast#firstStep} looks for: one of the three inclusive tests of the C library's
 * {@code kez_forecast_find}, which makes the comparison. Levels are compared exactly (20.3 % has
 * not reached 20 %), as the command-line tools compare them.
 */
public enum StepQuery {
  /** The level is at or below the threshold ({@code KEZ_QUERY_LEVEL_AT_OR_BELOW}). */
  LEVEL_AT_OR_BELOW(0),
  /** The level is at or above the threshold ({@code KEZ_QUERY_LEVEL_AT_OR_ABOVE}). */
  LEVEL_AT_OR_ABOVE(1),
  /**
   * The charging chance (0 to 1) is at or above the threshold
   * ({@code KEZ_QUERY_CHARGING_AT_OR_ABOVE}).
   */
  CHARGING_AT_OR_ABOVE(2);

  private final int query;

  StepQuery(int query) {
    this.query = query;
  }

  /** The {@code query} argument of {@code kez_forecast_find}: its KEZ_QUERY_* constant. */
  int query() {
    return query;
  }

  /** True for the two level tests, whose threshold a {@link Forecast} takes in percent. */
  boolean isLevel() {
    return this != CHARGING_AT_OR_ABOVE;
  }
}
