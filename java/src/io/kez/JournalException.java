package io.kez;

import java.io.File;
import java.io.IOException;

/**
 * A journal that {@link Forecaster#open(File)} could not open, and why ({@link #reason()}). The
 * message says what to do. A file that cannot be created or read at all is a plain {@link
 * IOException}.
 */
public final class JournalException extends IOException {
  private static final long serialVersionUID = 1L;

  // The C interface's KEZ_JOURNAL_* codes.
  static final int CANNOT_OPEN = -2;
  static final int LOCKED = -3;
  static final int NOT_JOURNAL = -4;
  static final int NEWER_VERSION = -5;
  static final int NO_MEMORY = -8;

  /** Why the journal was not opened. */
  public enum Reason {
    /** Another open forecaster, in this process or another, has the file. */
    LOCKED,
    /** The file is not a journal; it was left unchanged. */
    NOT_JOURNAL,
    /** The journal was written by a newer version of the library; it was left unchanged. */
    NEWER_VERSION
  }

  private final Reason reason;
  private final File file;

  JournalException(Reason reason, File file, String what) {
    super("kez: " + file + ": " + what);
    this.reason = reason;
    this.file = file;
  }

  public Reason reason() {
    return reason;
  }

  public File file() {
    return file;
  }
}
