#pragma once
#include <QString>

// Number text by a pattern of zeros with an optional point, the way the run
// log, the event files and the mail bodies write their numbers: "000.00"
// pads the whole part to three digits and rounds to two decimals, half away
// from zero; a negative value takes a minus in front of the padded digits
// ("-005.50"); a value that outgrows the padding simply gets longer.
QString formatZeros(double value, const QString &pattern);
