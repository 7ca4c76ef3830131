#pragma once
#include <QHeaderView>
#include <QList>
#include <QString>

// A column header of two tiers: captions of groups of columns above, and
// below them the captions of the columns (or of runs of columns that share
// one). A column that belongs to no group has its caption over both tiers.
class GroupedHeader : public QHeaderView {
    Q_OBJECT
public:
    explicit GroupedHeader(QWidget *parent = nullptr);

    // Columns counted from 0, first to last inclusive.
    void addGroup(int first, int last, const QString &caption);
    void setCaption(int first, int last, const QString &caption);
    // The caption over a column on a tier (0 the group, 1 the column).
    QString captionOf(int column, int tier) const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    struct Band {
        int first;
        int last;
        QString caption;
    };
    const Band *bandAt(const QList<Band> &bands, int column) const;
    void paintBand(class QPainter &painter, int first, int last, int top, int height, const QString &caption) const;

    QList<Band> m_groups;
    QList<Band> m_captions;
};
