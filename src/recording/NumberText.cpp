#include "NumberText.h"
#include <cmath>

QString formatZeros(double value, const QString &pattern)
{
    const qsizetype dot = pattern.indexOf(u'.');
    const int intDigits = int(dot < 0 ? pattern.size() : dot);
    const int decimals = int(dot < 0 ? 0 : pattern.size() - dot - 1);
    if (!std::isfinite(value))
        value = 0;

    // Print with six spare decimals first, which removes the binary noise
    // (24.85 is stored as 24.8499999...), then round the decimal digits half up.
    const QString printed = QString::number(std::fabs(value), 'f', decimals + 6);
    const qsizetype point = printed.indexOf(u'.');
    QString digits = printed.left(point) + printed.mid(point + 1, decimals);
    if (printed.at(point + 1 + decimals) >= u'5') {
        qsizetype i = digits.size() - 1;
        while (i >= 0 && digits[i] == u'9')
            digits[i--] = u'0';
        if (i < 0)
            digits.prepend(u'1');
        else
            digits[i] = QChar(digits[i].unicode() + 1);
    }

    QString whole = digits.left(digits.size() - decimals);
    while (whole.size() > 1 && whole.startsWith(u'0'))
        whole.remove(0, 1);
    if (whole.size() < intDigits)
        whole = QString(intDigits - whole.size(), u'0') + whole;
    if (intDigits == 0 && whole == QLatin1String("0"))
        whole.clear();
    QString text = whole;
    if (decimals > 0)
        text += u'.' + digits.right(decimals);

    bool zero = true;
    for (QChar c : digits)
        if (c != u'0')
            zero = false;
    if (value < 0 && !zero)
        text.prepend(u'-');
    return text;
}
