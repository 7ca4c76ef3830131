#include "TextTable.h"
#include "Files.h"
#include <QStringList>
#include <cmath>
#include <limits>
#include <stdexcept>

TextTable::TextTable(QString name, int cols, int rows) : m_name(std::move(name))
{
    resize(cols, rows);
}

void TextTable::resize(int cols, int rows)
{
    cols = std::max(0, cols);
    rows = std::max(0, rows);
    if (cols == m_cols && rows == m_rows && !m_cells.isEmpty())
        return;
    QVector<QString> cells((cols + 1) * (rows + 1));
    QVector<int> colors;
    if (!m_colors.isEmpty())
        colors.fill(White, (cols + 1) * (rows + 1));
    for (int r = 0; r <= std::min(rows, m_rows); ++r) {
        for (int c = 0; c <= std::min(cols, m_cols); ++c) {
            const int to = r * (cols + 1) + c;
            if (m_cells.size() > index(c, r))
                cells[to] = std::move(m_cells[index(c, r)]);
            if (!m_colors.isEmpty())
                colors[to] = m_colors[index(c, r)];
        }
    }
    m_cols = cols;
    m_rows = rows;
    m_cells = std::move(cells);
    m_colors = std::move(colors);
    ++m_revision;
}

QString TextTable::text(int col, int row) const
{
    if (!inside(col, row))
        return {};
    return m_cells[index(col, row)];
}

void TextTable::setText(int col, int row, const QString &text)
{
    if (!inside(col, row))
        throw std::out_of_range(QStringLiteral("%1: cell (%2, %3) outside %4 x %5")
                                    .arg(m_name).arg(col).arg(row).arg(m_cols).arg(m_rows)
                                    .toStdString());
    QString &cell = m_cells[index(col, row)];
    if (cell != text) {
        cell = text;
        ++m_revision;
    }
}

double TextTable::value(int col, int row) const
{
    return leadingNumber(text(col, row));
}

qint64 TextTable::number(int col, int row) const
{
    const double v = std::nearbyint(value(col, row)); // default rounding mode: half to even
    if (!(v == v))
        return 0;
    if (v >= 9.2e18)
        return std::numeric_limits<qint64>::max();
    if (v <= -9.2e18)
        return std::numeric_limits<qint64>::min();
    return qint64(v);
}

int TextTable::color(int col, int row) const
{
    if (!inside(col, row) || m_colors.isEmpty())
        return White;
    return m_colors[index(col, row)];
}

void TextTable::setColor(int col, int row, int color)
{
    if (!inside(col, row))
        throw std::out_of_range(QStringLiteral("%1: colour of cell (%2, %3) outside the table")
                                    .arg(m_name).arg(col).arg(row).toStdString());
    if (m_colors.isEmpty()) {
        if (color == White)
            return;
        m_colors.fill(White, m_cells.size());
    }
    if (m_colors[index(col, row)] != color) {
        m_colors[index(col, row)] = color;
        ++m_revision;
    }
}

void TextTable::clear()
{
    for (QString &s : m_cells)
        s.clear();
    m_colors.clear();
    ++m_revision;
}

void TextTable::clearCells()
{
    for (int r = 1; r <= m_rows; ++r)
        for (int c = 1; c <= m_cols; ++c)
            m_cells[index(c, r)].clear();
    ++m_revision;
}

void TextTable::clearColumn(int col)
{
    if (col < 0 || col > m_cols)
        return;
    for (int r = 1; r <= m_rows; ++r)
        m_cells[index(col, r)].clear();
    ++m_revision;
}

// Image format, UTF-8 text:
//   QM730-TABLE 1
//   <cols> <rows>
//   <col> <row> <escaped text>      one line per non-empty cell
//   END <cell count>
// Backslash, tab, CR and LF in a text are escaped as \\ \t \r \n.
static QString escapeCell(const QString &s)
{
    QString out;
    out.reserve(s.size());
    for (QChar ch : s) {
        switch (ch.unicode()) {
        case '\\': out += QLatin1String("\\\\"); break;
        case '\t': out += QLatin1String("\\t"); break;
        case '\r': out += QLatin1String("\\r"); break;
        case '\n': out += QLatin1String("\\n"); break;
        default: out += ch;
        }
    }
    return out;
}

static bool unescapeCell(QStringView s, QString *out)
{
    out->clear();
    for (qsizetype i = 0; i < s.size(); ++i) {
        if (s[i] != u'\\') {
            *out += s[i];
            continue;
        }
        if (++i >= s.size())
            return false;
        switch (s[i].unicode()) {
        case '\\': *out += u'\\'; break;
        case 't': *out += u'\t'; break;
        case 'r': *out += u'\r'; break;
        case 'n': *out += u'\n'; break;
        default: return false;
        }
    }
    return true;
}

QByteArray TextTable::save() const
{
    QString out = QStringLiteral("QM730-TABLE 1\n%1 %2\n").arg(m_cols).arg(m_rows);
    int count = 0;
    for (int r = 0; r <= m_rows; ++r) {
        for (int c = 0; c <= m_cols; ++c) {
            const QString &cell = m_cells[index(c, r)];
            if (cell.isEmpty())
                continue;
            out += QString::number(c) + u' ' + QString::number(r) + u' ' + escapeCell(cell) + u'\n';
            ++count;
        }
    }
    out += QStringLiteral("END %1\n").arg(count);
    return out.toUtf8();
}

bool TextTable::load(const QByteArray &image)
{
    const QString text = QString::fromUtf8(image);
    const QStringList lines = text.split(u'\n');
    if (lines.size() < 3 || lines[0] != QLatin1String("QM730-TABLE 1"))
        return false;
    const QStringList dims = lines[1].split(u' ');
    bool ok1 = false, ok2 = false;
    if (dims.size() != 2)
        return false;
    const int cols = dims[0].toInt(&ok1), rows = dims[1].toInt(&ok2);
    // Limits far above any table of the system keep a corrupt file from asking for gigabytes.
    if (!ok1 || !ok2 || cols < 0 || rows < 0 || cols > 100000 || rows > 100000
        || qint64(cols + 1) * (rows + 1) > 20'000'000)
        return false;
    QVector<QString> cells((cols + 1) * (rows + 1));
    int count = 0;
    bool ended = false;
    for (int i = 2; i < lines.size(); ++i) {
        const QString &line = lines[i];
        if (line.startsWith(QLatin1String("END "))) {
            bool ok = false;
            ended = line.mid(4).toInt(&ok) == count && ok;
            break;
        }
        const qsizetype s1 = line.indexOf(u' ');
        const qsizetype s2 = s1 < 0 ? -1 : line.indexOf(u' ', s1 + 1);
        if (s2 < 0)
            return false;
        bool okc = false, okr = false;
        const int c = line.left(s1).toInt(&okc);
        const int r = line.mid(s1 + 1, s2 - s1 - 1).toInt(&okr);
        if (!okc || !okr || c < 0 || r < 0 || c > cols || r > rows)
            return false;
        QString cell;
        if (!unescapeCell(QStringView(line).mid(s2 + 1), &cell))
            return false;
        cells[r * (cols + 1) + c] = cell;
        ++count;
    }
    if (!ended)
        return false; // a file cut short is refused whole
    m_cols = cols;
    m_rows = rows;
    m_cells = std::move(cells);
    m_colors.clear();
    ++m_revision;
    return true;
}
