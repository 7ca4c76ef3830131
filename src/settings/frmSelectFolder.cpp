#include "ConsoleMessages.h"
#include "frmSelectFolder.h"
#include "SaveSettings.h"
#include <QComboBox>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStorageInfo>
#include <QTreeView>
#include <QVBoxLayout>

namespace {

// "/" and every mounted file system's root, each once.
QStringList fileSystemRoots()
{
    QStringList roots{QStringLiteral("/")};
    for (const QStorageInfo &s : QStorageInfo::mountedVolumes())
        if (s.isValid() && s.isReady() && !roots.contains(s.rootPath()))
            roots << s.rootPath();
    std::sort(roots.begin() + 1, roots.end());
    return roots;
}

// The root that holds a path: the longest root that is a prefix of it.
QString rootOf(const QStringList &roots, const QString &path)
{
    QString best = QStringLiteral("/");
    for (const QString &r : roots)
        if (r.size() > best.size() && (path == r || path.startsWith(r + u'/')))
            best = r;
    return best;
}

} // namespace

frmSelectFolder::frmSelectFolder(const QString &saveFolder, const QString &home, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmSelectFolder"));
    setWindowTitle(QStringLiteral("選擇檔案路徑"));

    Drive1 = new QComboBox(this);
    Drive1->setObjectName(QStringLiteral("Drive1"));
    Drive1->addItems(fileSystemRoots());

    m_model = new QFileSystemModel(this);
    m_model->setFilter(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Drives);
    m_model->setRootPath(QStringLiteral("/"));
    Dir1 = new QTreeView(this);
    Dir1->setObjectName(QStringLiteral("Dir1"));
    Dir1->setModel(m_model);
    for (int c = 1; c < m_model->columnCount(); ++c)
        Dir1->hideColumn(c);
    Dir1->header()->hide();

    lblFolder = new QLabel(this);
    lblFolder->setObjectName(QStringLiteral("lblFolder"));
    lblFolder->setFrameShape(QFrame::Panel);
    lblFolder->setFrameShadow(QFrame::Sunken);

    auto *buttons = okCancelRow(this, &btnOK, &btnCancel, false);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(Drive1);
    layout->addWidget(Dir1, 1);
    layout->addWidget(lblFolder);
    layout->addLayout(buttons);
    resize(420, 420);

    // A click or a key in the folder list is the user's choice: the list
    // stops opening towards the start folder. Moves of the current folder
    // alone do not tell, as the model also moves it while folders load.
    Dir1->installEventFilter(this);
    Dir1->viewport()->installEventFilter(this);

    connect(Drive1, &QComboBox::activated, this, &frmSelectFolder::driveChanged);
    connect(Dir1->selectionModel(), &QItemSelectionModel::currentChanged, this, &frmSelectFolder::showSelected);
    // Folders are read and sorted in the background: the list reaches the
    // folder it starts at as each folder on the way has been read, and is
    // brought back to it after every sort, which moves the rows under it.
    connect(m_model, &QFileSystemModel::directoryLoaded, this, &frmSelectFolder::revealTarget);
    connect(m_model, &QAbstractItemModel::layoutChanged, this, &frmSelectFolder::revealTarget, Qt::QueuedConnection);
    connect(btnOK, &QPushButton::clicked, this, &frmSelectFolder::accept);
    connect(btnCancel, &QPushButton::clicked, this, &frmSelectFolder::reject);

    goTo(saveFolder.size() >= 2 ? saveFolderPath(home, saveFolder) : home);
}

void frmSelectFolder::goTo(const QString &path)
{
    // A folder that does not exist (yet) starts the list at its nearest existing parent.
    QString dir = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    while (!QFileInfo(dir).isDir() && dir != QStringLiteral("/"))
        dir = QFileInfo(dir).absolutePath();
    const QString root = rootOf(fileSystemRoots(), dir);
    Drive1->setCurrentIndex(std::max(0, Drive1->findText(root)));
    Dir1->setRootIndex(m_model->index(root));
    m_target = dir;
    revealTarget();
    lblFolder->setText(dir);
}

// The folder list opened down to the target folder, which is chosen and in
// sight, with its own folders shown.
void frmSelectFolder::revealTarget()
{
    if (m_target.isEmpty())
        return;
    const QModelIndex idx = m_model->index(m_target);
    if (!idx.isValid())
        return;
    Dir1->setCurrentIndex(idx);
    Dir1->expand(idx);
    Dir1->scrollTo(idx, QAbstractItemView::PositionAtCenter);
}

bool frmSelectFolder::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type t = event->type();
    if (t == QEvent::MouseButtonPress || t == QEvent::KeyPress || t == QEvent::Wheel)
        m_target.clear();
    return QDialog::eventFilter(watched, event);
}

void frmSelectFolder::driveChanged(int index)
{
    goTo(Drive1->itemText(index));
}

void frmSelectFolder::showSelected()
{
    const QModelIndex idx = Dir1->currentIndex();
    if (idx.isValid())
        lblFolder->setText(m_model->filePath(idx));
}

void frmSelectFolder::accept()
{
    m_folder = lblFolder->text();
    QDialog::accept();
}
