// kez::StatusLine: the status sample carried by one line of the host's log.
//
// The line is a comma-separated row with the sample at fixed columns (from
// 0): time in ms 0, level in percent 2, charging 3, countB1 19, countB2 20,
// aux1..aux3 24..26, countA 29; all other columns are ignored. Fields are
// read as decimals; text that is not a number reads as 0.0, and a missing
// column (a line shorter than 30 columns) reads as 0.0.
//
// Splitting stops as soon as a field equals the whole text that remains to
// be split. That ends normally after the last field, but also early when the
// last two fields are the same text ("...,5,5"): neither of them is kept
// then, and "7,7" yields no field at all. This rule is part of the log
// format as the host's logs have always been read; keep it.
#ifndef KEZ_INTERFACE_STATUSLINE_H_
#define KEZ_INTERFACE_STATUSLINE_H_

namespace kez {

class StatusLine {
 public:
  static constexpr int kTimeColumn = 0;
  static constexpr int kLevelColumn = 2;
  static constexpr int kChargingColumn = 3;
  static constexpr int kCountB1Column = 19;
  static constexpr int kCountB2Column = 20;
  static constexpr int kAux1Column = 24;
  static constexpr int kAux2Column = 25;
  static constexpr int kAux3Column = 26;
  static constexpr int kCountAColumn = 29;

  int fieldCount = 0;   // fields kept by the split
  double days = 0.0;    // column 0 / 86400000.0
  float level = 0.0f;   // column 2 x 0.01 in double, then single precision
  float charging = 0.0f;
  float aux1 = 0.0f;
  float aux2 = 0.0f;
  float aux3 = 0.0f;
  double countA = 0.0;
  double countB1 = 0.0;
  double countB2 = 0.0;

  // Parses `line` (null reads as an empty line).
  static StatusLine Parse(const char* line);
};

}  // namespace kez

#endif  // KEZ_INTERFACE_STATUSLINE_H_
