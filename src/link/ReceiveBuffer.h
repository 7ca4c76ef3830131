#pragma once
#include <QByteArray>

// The bytes received and not yet taken, oldest first. Columns count from 1 as
// on the wire: column n is frame offset n - 1. Dropping from the front only
// moves a start mark, so scanning a long reply piece by piece stays linear.
class ReceiveBuffer {
public:
    int size() const { return int(m_bytes.size() - m_head); }
    bool isEmpty() const { return size() == 0; }
    quint8 col(int n) const { return quint8(m_bytes[m_head + n - 1]); }
    const char *data() const { return m_bytes.constData() + m_head; }
    QByteArray bytes() const { return m_bytes.mid(m_head); }
    QByteArray mid(int firstCol, int count) const { return m_bytes.mid(m_head + firstCol - 1, count); }

    void append(const QByteArray &b) { m_bytes.append(b); }
    void clear() { m_bytes.clear(); m_head = 0; }
    void replace(const QByteArray &b) { m_bytes = b; m_head = 0; }
    // Drops the first n columns.
    void dropFront(int n)
    {
        m_head += std::min<qsizetype>(n, size());
        if (m_head == m_bytes.size()) {
            clear();
        } else if (m_head > 4096 && m_head * 2 > m_bytes.size()) {
            m_bytes.remove(0, m_head);
            m_head = 0;
        }
    }
    // Keeps columns 1 to n, cutting everything behind them.
    void cutBehind(int n)
    {
        if (n < size())
            m_bytes.truncate(m_head + n);
    }

private:
    QByteArray m_bytes;
    qsizetype m_head = 0;
};
