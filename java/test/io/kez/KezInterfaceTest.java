package io.kez;

import static org.junit.Assert.assertArrayEquals;
import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertNotEquals;
import static org.junit.Assert.assertTrue;

import java.nio.file.Path;
import java.util.Arrays;
import org.junit.Rule;
import org.junit.Test;
import org.junit.rules.TemporaryFolder;

/** The raw native methods, through a real JVM (run with -Xcheck:jni). */
public class KezInterfaceTest {
  @Rule public TemporaryFolder dir = new TemporaryFolder();

  private static final int[] MODES = {
      KezInterface.MODE_FREE, KezInterface.MODE_WITHOUT_CHARGING,
      KezInterface.MODE_CHARGING_STARTING};

  private static float[] filled(int n, float value) {
    float[] a = new float[n];
    Arrays.fill(a, value);
    return a;
  }

  @Test
  public void versionText() {
    assertEquals("1.04.21", KezInterface.kezGetVersion());
  }

  @Test
  public void zeroHandleIsToleratedEverywhere() {
    assertEquals(0, KezInterface.kezAddStatusValue(0L, SyntheticLog.START_MS, 50f, 0f, 0f, 0f,
        0f, 0.0, 0.0, 0.0));
    KezInterface.kezAddStatusValue(0L, "1614556800000,x,50,0");
    KezInterface.kezStop(0L);
    for (int mode : MODES) {
      float[] levels = filled(6, 7f);
      float[] charging = filled(9, 7f); // longer than levels: zeroed as a whole
      assertEquals(100f, KezInterface.kezPredict(0L, mode, levels, charging), 0f);
      assertArrayEquals(new float[6], levels, 0f);
      assertArrayEquals(new float[9], charging, 0f);
    }
    // An unknown mode runs nothing, not even the null check of a forecast.
    float[] levels = filled(3, 7f);
    float[] charging = filled(3, 7f);
    assertEquals(0f, KezInterface.kezPredict(0L, 5, levels, charging), 0f);
    assertArrayEquals(new float[3], levels, 0f);
    assertArrayEquals(new float[3], charging, 0f);
  }

  @Test
  public void unknownModeGivesZerosAndNoDistance() {
    long h = KezInterface.kezCreate();
    try {
      assertNotEquals(0L, h);
      for (String[] r : new SyntheticLog(1).rows) feed(h, r);
      for (int mode : new int[] {5, 3, -1, Integer.MIN_VALUE, Integer.MAX_VALUE}) {
        float[] levels = filled(12, 7f);
        float[] charging = filled(12, 7f);
        assertEquals(0f, KezInterface.kezPredict(h, mode, levels, charging), 0f);
        assertArrayEquals(new float[12], levels, 0f);
        assertArrayEquals(new float[12], charging, 0f);
      }
    } finally {
      KezInterface.kezStop(h);
    }
  }

  @Test
  public void emptyAndNullArraysAreNotReadPast() throws Exception {
    // A forecast of no steps copies no record back, so the result is the distance of the
    // zeroed first record: 0.0, as the C interface gives with a count of 0.
    long h = KezInterface.kezCreate();
    try {
      for (int mode : MODES) {
        assertEquals(0f, KezInterface.kezPredict(h, mode, new float[0], new float[0]), 0f);
        assertEquals(0f, KezInterface.kezPredict(h, mode, null, null), 0f);
      }
      SyntheticLog log = new SyntheticLog(8);
      for (String[] r : log.rows) feed(h, r);
      ReferenceDump c = ReferenceDump.run(log.writeCsv(dir.getRoot().toPath()),
          "--every", "1000000", "--steps", "0");
      ReferenceDump.Checkpoint end = c.checkpoints.get(0);
      for (int mode : MODES) {
        float expected = (float) end.variants.get(mode).distance;
        assertEquals(expected, KezInterface.kezPredict(h, mode, new float[0], new float[0]), 0f);
        float[] charging = filled(4, 7f);
        assertEquals(expected, KezInterface.kezPredict(h, mode, new float[0], charging), 0f);
        assertArrayEquals(filled(4, 7f), charging, 0f);
      }
    } finally {
      KezInterface.kezStop(h);
    }
  }

  @Test
  public void valueForecastsEqualTheCInterface() throws Exception {
    SyntheticLog log = new SyntheticLog(12);
    ReferenceDump c = ReferenceDump.run(log.writeCsv(dir.getRoot().toPath()));
    assertEquals(KezInterface.kezGetVersion(), c.version);
    long h = KezInterface.kezCreate();
    try {
      int row = 0;
      int checkpoint = 0;
      for (String[] r : log.rows) {
        assertEquals(1, feed(h, r));
        if (++row % SyntheticLog.REPORTS_PER_DAY == 0) {
          compare(h, c.checkpoints.get(checkpoint++), row);
        }
      }
      assertEquals(c.checkpoints.size(), checkpoint);
    } finally {
      KezInterface.kezStop(h);
    }
    assertSimilarPastWasFound(c);
  }

  @Test
  public void lineForecastsEqualTheCInterface() throws Exception {
    SyntheticLog log = new SyntheticLog(10);
    ReferenceDump c = ReferenceDump.run(log.writeStatusLines(dir.getRoot().toPath()), "--lines");
    long h = KezInterface.kezCreate();
    try {
      int row = 0;
      int checkpoint = 0;
      for (String line : log.statusLines()) {
        KezInterface.kezAddStatusValue(h, line);
        if (++row % SyntheticLog.REPORTS_PER_DAY == 0) {
          compare(h, c.checkpoints.get(checkpoint++), row);
        }
      }
      assertEquals(c.checkpoints.size(), checkpoint);
      KezInterface.kezAddStatusValue(h, (String) null); // ignored
    } finally {
      KezInterface.kezStop(h);
    }
    assertSimilarPastWasFound(c);
  }

  @Test
  public void forecastChangesNothingLearned() {
    long h = KezInterface.kezCreate();
    try {
      for (String[] r : new SyntheticLog(9).rows) feed(h, r);
      float[] first = new float[144];
      float[] firstCharging = new float[144];
      float d = KezInterface.kezPredict(h, KezInterface.MODE_FREE, first, firstCharging);
      for (int mode : MODES) KezInterface.kezPredict(h, mode, new float[300], new float[300]);
      float[] again = new float[144];
      float[] againCharging = new float[144];
      assertEquals(d, KezInterface.kezPredict(h, KezInterface.MODE_FREE, again, againCharging), 0f);
      assertArrayEquals(first, again, 0f);
      assertArrayEquals(firstCharging, againCharging, 0f);
    } finally {
      KezInterface.kezStop(h);
    }
  }

  static int feed(long h, String[] r) {
    return KezInterface.kezAddStatusValue(h, Long.parseLong(r[0]), Float.parseFloat(r[1]),
        Float.parseFloat(r[2]), Float.parseFloat(r[3]), Float.parseFloat(r[4]),
        Float.parseFloat(r[5]), Double.parseDouble(r[6]), Double.parseDouble(r[7]),
        Double.parseDouble(r[8]));
  }

  /** Every variant of the Java forecast equals the C one, converted as the binding converts. */
  private static void compare(long h, ReferenceDump.Checkpoint cp, int row) {
    assertEquals(row, cp.row);
    for (int mode : MODES) {
      ReferenceDump.Variant want = cp.variants.get(mode);
      int n = want.steps.size();
      float[] levels = new float[n];
      float[] charging = new float[n];
      float distance = KezInterface.kezPredict(h, mode, levels, charging);
      String where = "row " + row + " mode " + mode;
      assertEquals(where, (float) want.distance, distance, 0f);
      for (int k = 0; k < n; k++) {
        double[] s = want.steps.get(k);
        assertEquals(where + " level " + k, (float) (s[0] * 100.0), levels[k], 0f);
        assertEquals(where + " charging " + k, (float) s[1], charging[k], 0f);
      }
    }
  }

  /** The comparison covered forecasts made from similar past moments, not only extrapolations. */
  static void assertSimilarPastWasFound(ReferenceDump c) {
    boolean found = false;
    for (ReferenceDump.Checkpoint cp : c.checkpoints) {
      for (ReferenceDump.Variant v : cp.variants) found |= v.distance != 100.0;
    }
    assertTrue("some forecast was made from similar past moments", found);
  }
}
