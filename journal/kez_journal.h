/*
 * Status codes of a history journal, as the C interface reports them.
 *
 * A journal is the file in which a forecaster keeps every report it took, so
 * that a process that starts again replays it and forecasts as if it had
 * never stopped. Opening one gives 0 or one of the negative codes below;
 * after KEZ_JOURNAL_DISK_FULL or KEZ_JOURNAL_WRITE_FAILED the journal is
 * open nevertheless (it writes what it could not as soon as it can), after
 * the others it is not. Every later call that writes (a report, a sync,
 * closing) gives 0 or KEZ_JOURNAL_DISK_FULL / KEZ_JOURNAL_WRITE_FAILED.
 *
 * The codes start at -2 so that -1 keeps meaning "null handle" for every
 * function that returns them.
 *
 * Written as C so that the block can move into the library's public header
 * as it is.
 */
#ifndef KEZ_JOURNAL_KEZ_JOURNAL_H_
#define KEZ_JOURNAL_KEZ_JOURNAL_H_

enum {
  /* Opened (created when missing, replayed when present), or written. A
   * torn last line (a write cut short by a crash or a power cut) is not an
   * error: the journal is replayed up to its last whole report, the torn
   * line is dropped and counted. Damaged lines in the middle are skipped
   * and counted too. */
  KEZ_JOURNAL_OK = 0,

  /* The file cannot be created or read: its folder is missing or not
   * writable, a directory has its name, or reading it failed. Check the
   * path; the app's files directory is the place for a journal. */
  KEZ_JOURNAL_CANNOT_OPEN = -2,

  /* Another open forecaster, in this process or another, has the journal.
   * Only one writer may hold a journal: close the other one first, or use
   * another file. */
  KEZ_JOURNAL_LOCKED = -3,

  /* The file is not a journal (it does not start with the journal's first
   * line). Nothing was changed in it. Use another path, or delete the file
   * when it is known to be a lost journal. */
  KEZ_JOURNAL_NOT_JOURNAL = -4,

  /* The journal was written by a newer version of the library, which may
   * write reports this version cannot read. Nothing was changed in it. */
  KEZ_JOURNAL_NEWER_VERSION = -5,

  /* The disk is full (or the file reached the process's size limit). The
   * reports stay in memory, the forecaster keeps working, and every later
   * report tries to write them again. */
  KEZ_JOURNAL_DISK_FULL = -6,

  /* Writing or syncing failed for another reason (an I/O error). As for
   * KEZ_JOURNAL_DISK_FULL, the reports stay in memory and are written
   * again with the next report. */
  KEZ_JOURNAL_WRITE_FAILED = -7,

  /* Memory for the journal could not be allocated. */
  KEZ_JOURNAL_NO_MEMORY = -8
};

#endif /* KEZ_JOURNAL_KEZ_JOURNAL_H_ */
