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
    if (!m_colors.isEmpty()) {
        QVector<int> colors(qsizetype(cols + 1) * (rows + 1), White);
        for (int r = 0; r <= std::min(rows, m_rows); ++r)
            for (int c = 0; c <= std::min(cols, m_cols); ++c)
                colors[qsizetype(r) * (cols + 1) + c] = m_colors[index(c, r)];
        m_colors = std::move(colors);
    }
    m_cells.resize(rows + 1);
    for (QVector<QString> &row : m_cells)
        if (!row.isEmpty())
            row.resize(cols + 1);
    m_cols = cols;
    m_rows = rows;
    ++m_revision;
}

QString TextTable::text(int col, int row) const
{
    if (!inside(col, row))
        return {};
    const QVector<QString> &r = m_cells[row];
    return r.isEmpty() ? QString() : r[col];
}

void TextTable::setText(int col, int row, const QString &text)
{
    if (!inside(col, row))
        throw std::out_of_range(QStringLiteral("%1: cell (%2, %3) outside %4 x %5")
                                    .arg(m_name).arg(col).arg(row).arg(m_cols).arg(m_rows)
                                    .toStdString());
    QVector<QString> &r = m_cells[row];
    if (r.isEmpty()) {
        if (text.isEmpty())
            return;
        r.resize(m_cols + 1);
    }
    QString &cell = r[col];
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
        m_colors.fill(White, qsizetype(m_cols + 1) * (m_rows + 1));
    }
    if (m_colors[index(col, row)] != color) {
        m_colors[index(col, row)] = color;
        ++m_revision;
    }
}

void TextTable::clear()
{
    for (QVector<QString> &row : m_cells)
        row.clear();
    m_colors.clear();
    ++m_revision;
}

void TextTable::clearCells()
{
    for (int r = 1; r <= m_rows; ++r) {
        QVector<QString> &row = m_cells[r];
        if (row.isEmpty())
            continue;
        const QString heading = row[0];
        row.clear();
        if (!heading.isEmpty()) {
            row.resize(m_cols + 1);
            row[0] = heading;
        }
    }
    ++m_revision;
}

void TextTable::clearColumn(int col)
{
    if (col < 0 || col > m_cols)
        return;
    for (int r = 1; r <= m_rows; ++r)
        if (!m_cells[r].isEmpty())
            m_cells[r][col].clear();
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
        if (m_cells[r].isEmpty())
            continue;
        for (int c = 0; c <= m_cols; ++c) {
            const QString &cell = m_cells[r][c];
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
    QVector<QVector<QString>> cells(rows + 1);
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
        if (cells[r].isEmpty())
            cells[r].resize(cols + 1);
        cells[r][c] = cell;
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

bool TextTable::imageShape(const QByteArray &image, int *cols, int *rows)
{
    // Only the two heading lines are looked at; load() still checks the rest.
    const qsizetype first = image.indexOf('\n');
    const qsizetype second = first < 0 ? -1 : image.indexOf('\n', first + 1);
    if (second < 0 || image.left(first) != "QM730-TABLE 1")
        return false;
    const QList<QByteArray> dims = image.mid(first + 1, second - first - 1).split(' ');
    if (dims.size() != 2)
        return false;
    bool ok1 = false, ok2 = false;
    const int c = dims[0].toInt(&ok1), r = dims[1].toInt(&ok2);
    if (!ok1 || !ok2 || c < 0 || r < 0)
        return false;
    *cols = c;
    *rows = r;
    return true;
}
