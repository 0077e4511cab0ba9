// The text of a journal: its first two lines and one line per report.
//
//   # kez journal 1
//   time_ms,level_percent,charging,aux1,aux2,aux3,countA,countB1,countB2,check
//   1709510445000,74,0,24.9,4.019,0,0,0,0,5c1e0a7d
//
// This is the tools' CSV log format: the tools skip lines that start with
// '#' and ignore columns they do not know, so a journal pulled from a phone
// reads as a log as it is.
//
// The first line marks the file as a journal and names its version; a
// journal of a later version is refused rather than misread. The `check`
// column holds the CRC-32 of the line's text before its last comma, in
// eight lowercase hexadecimal digits: a line damaged in any byte no longer
// matches it and is skipped instead of being replayed with a wrong value.
//
// A rewrite that drops old reports also writes a snapshot after the reports
// it keeps: the forecaster's own saved state at that point (what it learned
// from the dropped reports and can no longer learn from the journal), in
// parts of up to kJournalSnapshotPart bytes, one line each:
// `# snapshot <part>/<parts> <hex bytes>,<check>`, parts counted from 0. The
// tools skip these lines as comments.
//
// Numbers: the time is a whole number of milliseconds; every other value is
// written so that it reads back to the very same float or double bits (the
// shortest such text where the standard library has floating-point
// std::to_chars, else "%.9g" for floats and "%.17g" for doubles, which is
// exact too). NaN is written "nan" or "-nan" (its payload bits are not
// kept), infinities "inf" and "-inf".
#ifndef KEZ_JOURNAL_JOURNALLINE_H_
#define KEZ_JOURNAL_JOURNALLINE_H_

#include <cstddef>

#include "journal/JournalRecord.h"

namespace kez {

constexpr int kJournalVersion = 1;

// The first two lines of every journal, each ending in '\n'.
extern const char kJournalPrologue[];
extern const std::size_t kJournalPrologueLength;
// The header line alone, without its '\n'.
extern const char kJournalHeader[];

// Room for the longest report line, its '\n' included.
constexpr std::size_t kJournalLineMax = 256;

// Writes the line of `record`, '\n' included, into `out` (kJournalLineMax
// bytes) and returns its length.
std::size_t FormatJournalLine(const JournalRecord& record, char* out);

// Reads one report line (`length` bytes, without its '\n'). Returns false,
// leaving *record unspecified, unless the line has the ten fields of a
// report with a matching check.
bool ParseJournalLine(const char* line, std::size_t length, JournalRecord* record);

// The largest snapshot and the largest part, in bytes.
constexpr std::size_t kJournalSnapshotMax = 256 * 1024;
constexpr std::size_t kJournalSnapshotPart = 4096;
constexpr int kJournalSnapshotParts = kJournalSnapshotMax / kJournalSnapshotPart;
// Room for the longest snapshot line, '\n' included.
constexpr std::size_t kJournalSnapshotLineMax = 2 * kJournalSnapshotPart + 48;

// Writes the line of part `part` of `parts` (1 .. kJournalSnapshotParts),
// holding `size` (<= kJournalSnapshotPart) bytes, '\n' included, into `out`
// (kJournalSnapshotLineMax bytes); returns its length.
std::size_t FormatSnapshotLine(int part, int parts, const unsigned char* data,
                               std::size_t size, char* out);

// True when `line` (without its '\n') starts as a snapshot line does.
bool IsSnapshotLine(const char* line, std::size_t length);

// Reads a snapshot line, decoding its bytes in place to the line's start;
// false when it is damaged.
bool ParseSnapshotLine(char* line, std::size_t length, int* part, int* parts,
                       std::size_t* size);

// What a first line says: a journal this version reads, a journal of a later
// version, or something else.
enum class JournalMarker { kJournal, kNewer, kOther };
JournalMarker ParseJournalMarker(const char* line, std::size_t length);

}  // namespace kez

#endif  // KEZ_JOURNAL_JOURNALLINE_H_
