package io.kez;

/** The three questions a forecast can answer. */
public enum Variant {
  /** What will most likely happen: charging as the phone's past suggests. */
  FREE(KezInterface.MODE_FREE),
  /** What happens when the phone is not charged during the next day. */
  WITHOUT_CHARGING(KezInterface.MODE_WITHOUT_CHARGING),
  /** What happens when the phone is plugged in now and stays on the charger for a day. */
  CHARGING_STARTING(KezInterface.MODE_CHARGING_STARTING);

  private final int mode;

  Variant(int mode) {
    this.mode = mode;
  }

  /** The {@code mode} argument of {@link KezInterface#kezPredict}. */
  public int mode() {
    return mode;
  }
}
