package io.kez;

/**
 * What {@link Forecast#firstStep} looks for: the same three tests, inclusive, as the C
 * library's {@code kez_forecast_find}, applied to the values a {@link Forecast} holds.
 */
public enum StepQuery {
  /** The level in percent is at or below the threshold. */
  LEVEL_AT_OR_BELOW,
  /** The level in percent is at or above the threshold. */
  LEVEL_AT_OR_ABOVE,
  /** The charging chance (0 to 1) is at or above the threshold. */
  CHARGING_AT_OR_ABOVE;

  boolean test(float levelPercent, float chargingChance, double threshold) {
    switch (this) {
      case LEVEL_AT_OR_BELOW:
        return levelPercent <= threshold;
      case LEVEL_AT_OR_ABOVE:
        return levelPercent >= threshold;
      default:
        return chargingChance >= threshold;
    }
  }
}
