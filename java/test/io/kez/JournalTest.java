package io.kez;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertFalse;
import static org.junit.Assert.assertTrue;
import static org.junit.Assert.fail;

import java.io.File;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.List;
import java.util.Map;
import java.util.stream.Stream;
import org.junit.After;
import org.junit.Before;
import org.junit.Test;

/**
 * A forecaster with a journal through a real JVM: closed and opened again at several moments of
 * the bundled 35-day log, the last after the journal was rewritten to its last 31 days, it
 * forecasts bit for bit as one that never closed (levels, chances of charging, distances and
 * weights of all three variants); the ways opening can fail are the documented exceptions. Run
 * with -Xcheck:jni.
 */
public class JournalTest {
  private Path folder;

  @Before
  public void makeFolder() throws IOException {
    folder = Files.createTempDirectory("kez_journal_test");
  }

  @After
  public void removeFolder() throws IOException {
    try (Stream<Path> paths = Files.walk(folder)) {
      paths.sorted(Comparator.reverseOrder()).map(Path::toFile).forEach(File::delete);
    }
  }

  private static List<String[]> bundledLog() throws IOException {
    Path log = new File(System.getProperty("kez.source"), "examples/routine-35d.csv").toPath();
    List<String[]> rows = new ArrayList<>();
    for (String line : Files.readAllLines(log, StandardCharsets.UTF_8)) {
      if (line.isEmpty() || !Character.isDigit(line.charAt(0))) continue;  // the header
      rows.add(line.split(","));
    }
    return rows;
  }

  /** Every value a forecast of each variant gives, as bits. */
  private static List<Long> everything(Forecaster f) {
    List<Long> bits = new ArrayList<>();
    for (Variant v : Variant.values()) {
      Forecast day = f.forecast(v);
      bits.add((long) Float.floatToIntBits(day.distance()));
      for (int k = 0; k < day.size(); k++) {
        bits.add((long) Float.floatToIntBits(day.levelPercent(k)));
        bits.add((long) Float.floatToIntBits(day.chargingChance(k)));
        for (Map.Entry<String, Double> w : day.levelWeights(k).entrySet()) {
          bits.add((long) w.getKey().hashCode());
          bits.add(Double.doubleToLongBits(w.getValue()));
        }
        for (Map.Entry<String, Double> w : day.chargingWeights(k).entrySet()) {
          bits.add((long) w.getKey().hashCode());
          bits.add(Double.doubleToLongBits(w.getValue()));
        }
      }
      bits.add(f.scoredForecasts(v));
    }
    return bits;
  }

  @Test
  public void reopenedForecastsAreBitIdentical() throws IOException {
    List<String[]> log = bundledLog();
    assertTrue(log.size() > 9000);
    File journal = folder.resolve("history.csv").toFile();
    // Two within the first 15 days, one in the last day: after the rewrite (once the
    // journal's reports span more than 34 days).
    int[] closes = {700, 4100, log.size() - 100};
    int end = log.size();
    Forecaster reopened = Forecaster.open(journal);
    try (Forecaster steady = new Forecaster()) {
      int next = 0;
      for (int i = 0; i < end; i++) {
        if (next < closes.length && closes[next] == i) {
          next++;
          assertTrue(reopened.sync());
          assertEquals(0, reopened.unsafeReports());
          reopened.close();
          reopened = Forecaster.open(journal);
          if (next < closes.length) {
            assertEquals(i, reopened.replayedReports());
          } else {
            assertTrue(reopened.replayedReports() < i * 33 / 35);
          }
          assertEquals("reopened before report " + i, everything(steady), everything(reopened));
        }
        ForecasterTest.report(steady, log.get(i));
        ForecasterTest.report(reopened, log.get(i));
      }
      assertEquals(everything(steady), everything(reopened));
    } finally {
      reopened.close();
    }
  }

  @Test
  public void failedOpeningsSayWhy() throws IOException {
    File journal = folder.resolve("history.csv").toFile();
    try (Forecaster first = Forecaster.open(journal)) {
      assertTrue(first.report(1709510400000L, 80f, false));
      try {
        Forecaster.open(journal).close();
        fail("a second forecaster opened the same journal");
      } catch (JournalException e) {
        assertEquals(JournalException.Reason.LOCKED, e.reason());
        assertTrue(e.getMessage().contains("another open forecaster"));
      }
    }

    File notes = folder.resolve("notes.txt").toFile();
    Files.write(notes.toPath(), "shopping list\n".getBytes(StandardCharsets.UTF_8));
    try {
      Forecaster.open(notes).close();
      fail("opened a file that is not a journal");
    } catch (JournalException e) {
      assertEquals(JournalException.Reason.NOT_JOURNAL, e.reason());
      assertTrue(e.getMessage().contains("left unchanged"));
    }
    assertEquals("shopping list\n",
        new String(Files.readAllBytes(notes.toPath()), StandardCharsets.UTF_8));

    File missing = folder.resolve("missing/history.csv").toFile();
    try {
      Forecaster.open(missing).close();
      fail("opened a journal in a missing folder");
    } catch (JournalException e) {
      fail("a missing folder is a plain IOException: " + e);
    } catch (IOException e) {
      assertTrue(e.getMessage().contains("cannot create or read"));
    }
    assertFalse(missing.exists());

    // A forecaster without a journal: sync does nothing, nothing is unsafe.
    try (Forecaster plain = new Forecaster()) {
      assertTrue(plain.sync());
      assertEquals(0, plain.unsafeReports());
    }
  }
}
