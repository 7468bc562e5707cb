#include "fileutils/browser/ui/ApplicationsBrowserWindow.h"

#include <QAction>
#include <QComboBox>
#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QScreen>
#include <QShortcut>
#include <QSignalBlocker>
#include <QToolButton>
#include <QToolTip>
#include <QVBoxLayout>

#include "controls/KVIconServices.h"
#include "controls/KVTableView.h"
#include "controls/LocalizedText.h"
#include "fileutils/browser/ui/BrowserIconModel.h"
#include "prefs/CorvalisPreferences.h"

namespace corvalis {

namespace {
constexpr int kMaximumDepth = 10;
constexpr int kGapToPane = 8;
constexpr QSize kInitialSize(320, 460);
// Room for the row's image in front of its name.
constexpr int kImageWidth = 22;

// A row's tool tip (its path, in info mode) shows only while the mouse is over
// the image and the name, not over the empty rest of the row.
class BrowserCell : public KVImageAndTextCell {
public:
    using KVImageAndTextCell::KVImageAndTextCell;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override {
        if (event->type() == QEvent::ToolTip) {
            QRect named = option.rect;
            named.setWidth(std::min(named.width(), option.fontMetrics.horizontalAdvance(index.data().toString()) + kImageWidth));
            if (!named.contains(event->pos())) {
                QToolTip::hideText();
                return true;
            }
        }
        return KVImageAndTextCell::helpEvent(event, view, option, index);
    }
};
}  // namespace

ApplicationsBrowserWindow::ApplicationsBrowserWindow(CorvalisPreferences& prefs, NotificationCenter& local,
                                                     RunningApplications& running, DomainStore& domains,
                                                     QWidget* paneWindow, BrowserEnvironment environment)
    : QDialog(paneWindow, Qt::Tool), QtEditorView(this), paneWindow_(paneWindow) {
    setWindowTitle(localized("ApplicationsBrowser"));
    setAccessibleName(localized("ApplicationsBrowser"));
    setModal(false);
    controller_ = std::make_unique<ApplicationsBrowserController>(prefs, local, running, domains, *this,
                                                                  std::move(environment), Workspace::shared());
    buildControls();
    resize(kInitialSize);
    if (paneWindow_) paneWindow_->installEventFilter(this);
}

// The list goes before the controller it shows.
ApplicationsBrowserWindow::~ApplicationsBrowserWindow() {
    if (paneWindow_) paneWindow_->removeEventFilter(this);
    table_->setModel(nullptr);
    icons_->setSourceModel(nullptr);
}

void ApplicationsBrowserWindow::buildControls() {
    auto* layout = new QVBoxLayout(this);

    auto* top = new QHBoxLayout;
    auto* sourceLabel = new QLabel(localized("BrowserSource"), this);
    sources_ = new QComboBox(this);
    sources_->setAccessibleName(localized("BrowserSource"));
    sourceLabel->setBuddy(sources_);
    sourceIcon_ = new QLabel(this);
    sourceIcon_->hide();
    auto* actions = new QToolButton(this);
    actions->setText(localized("BrowserActions"));
    actions->setAccessibleName(localized("BrowserActions"));
    actions->setFocusPolicy(Qt::StrongFocus);
    actions->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(actions);
    infoAction_ = menu->addAction(localized("ShowInfoTags"), this, [this] { controller_->onShowInfo(); });
    menu->addAction(localized("BrowserReload"), this, [this] { controller_->onUpdateList(); });
    actions->setMenu(menu);
    top->addWidget(sourceLabel);
    top->addWidget(sources_, 1);
    top->addWidget(sourceIcon_);
    top->addWidget(actions);
    layout->addLayout(top);

    auto* levels = new QHBoxLayout;
    depthLabel_ = new QLabel(localized("BrowserDepth"), this);
    depth_ = new QComboBox(this);
    depth_->setAccessibleName(localized("BrowserDepth"));
    depthLabel_->setBuddy(depth_);
    for (int depth = 1; depth <= kMaximumDepth; ++depth) depth_->addItem(QString::number(depth), depth);
    depth_->addItem(localized("BrowserAllLevels"), 0);
    levels->addWidget(depthLabel_);
    levels->addWidget(depth_);
    levels->addStretch(1);
    progress_ = new QProgressBar(this);
    progress_->setRange(0, 0);  // turning, with no end known
    progress_->setMaximumWidth(80);
    progress_->setTextVisible(false);
    progress_->setAccessibleName(localized("BrowserLoading"));
    QSizePolicy keepPlace = progress_->sizePolicy();
    keepPlace.setRetainSizeWhenHidden(true);
    progress_->setSizePolicy(keepPlace);
    progress_->hide();
    levels->addWidget(progress_);
    layout->addLayout(levels);

    table_ = new KVTableView(this);
    table_->setAccessibleName(localized("BrowserApplicationsList"));
    icons_ = new BrowserIconModel(this);
    icons_->setSourceModel(controller_.get());
    table_->setModel(icons_);
    table_->setItemDelegate(new BrowserCell(table_));
    table_->horizontalHeader()->hide();
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->verticalHeader()->hide();
    // Fixed rows: the view never measures every row of a long list.
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 6);
    table_->setShowGrid(false);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table_->setDragEnabled(true);
    table_->setDragDropMode(QAbstractItemView::DragOnly);
    table_->setDefaultDropAction(Qt::CopyAction);
    table_->setTypeToSelect([this](const QString& typed) { return controller_->selectString(typed.toStdString()); });
    setItemView(table_);
    layout->addWidget(table_, 1);

    hint_ = new QLabel(this);
    hint_->setWordWrap(true);
    layout->addWidget(hint_);

    connect(sources_, &QComboBox::activated, this, [this](int index) {
        bool control = QGuiApplication::queryKeyboardModifiers() & Qt::ControlModifier;
        controller_->onShowWhat(sources_->itemData(index).toInt(), control);
    });
    connect(depth_, &QComboBox::activated, this,
            [this](int index) { controller_->onDepth(depth_->itemData(index).toInt()); });
    connect(table_, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& index) {
        controller_->onDoubleClick(index.row(), QGuiApplication::queryKeyboardModifiers() != Qt::NoModifier);
    });
    // Return reveals the selected application, as a double click does.
    auto* reveal = new QShortcut(QKeySequence(Qt::Key_Return), table_, nullptr, nullptr, Qt::WidgetShortcut);
    connect(reveal, &QShortcut::activated, this, &ApplicationsBrowserWindow::revealSelected);
}

void ApplicationsBrowserWindow::revealSelected() {
    QModelIndex current = table_->currentIndex();
    if (current.isValid()) controller_->onDoubleClick(current.row(), false);
}

void ApplicationsBrowserWindow::initializeOnce() {
    if (initialized_) return;
    initialized_ = true;
    controller_->initializeBrowser(true);
}

// The link.

void ApplicationsBrowserWindow::showApplicationsBrowser() {
    initializeOnce();
    if (!placed_) placeBesidePane();
    show();
    raise();
}

void ApplicationsBrowserWindow::closeBrowser() { hide(); }

void ApplicationsBrowserWindow::updateBrowser() {
    // After an import: the store holds other lists, so the cached ones go.
    if (initialized_) controller_->initializeBrowser(false);
}

void ApplicationsBrowserWindow::synchronizeDragApplicationsInfoWithPane(const std::string& identifier) {
    controller_->synchronizeDragApplicationsInfoWithPane(identifier);
}

void ApplicationsBrowserWindow::synchronizeOpenMenuItem(int index, bool isFolder, bool removeDuplicate,
                                                        bool updateSelection) {
    if (initialized_) controller_->synchronizeOpenMenuItem(index, isFolder, removeDuplicate, updateSelection);
}

// The window.

void ApplicationsBrowserWindow::placeBesidePane() {
    placed_ = true;
    if (!paneWindow_) return;
    QRect pane = paneWindow_->frameGeometry();
    QRect screen = paneWindow_->screen() ? paneWindow_->screen()->availableGeometry() : QRect();
    QPoint at(pane.right() + kGapToPane, pane.top());
    // No room on the right: the left side of the pane, else over its right edge.
    if (!screen.isNull() && at.x() + width() > screen.right()) {
        at.setX(pane.left() - kGapToPane - width());
        if (at.x() < screen.left()) at.setX(screen.right() - width());
    }
    move(at);
}

void ApplicationsBrowserWindow::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    initializeOnce();
    controller_->browserWillShow();
}

void ApplicationsBrowserWindow::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    controller_->browserDidHide();
}

bool ApplicationsBrowserWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == paneWindow_ && event->type() == QEvent::WindowActivate && initialized_)
        controller_->windowDidBecomeMain();
    return QDialog::eventFilter(watched, event);
}

// The view.

void ApplicationsBrowserWindow::showSources(const std::vector<BrowserSource>& sources, int selectedTag) {
    QSignalBlocker quiet(sources_);
    sources_->clear();
    for (const BrowserSource& source : sources) {
        if (source.tag < 0) sources_->insertSeparator(sources_->count());
        else sources_->addItem(QString::fromStdString(source.title), source.tag);
    }
    sources_->setCurrentIndex(sources_->findData(selectedTag));
}

void ApplicationsBrowserWindow::showDepth(std::optional<int> depth) {
    depthLabel_->setVisible(depth.has_value());
    depth_->setVisible(depth.has_value());
    if (!depth) return;
    QSignalBlocker quiet(depth_);
    if (depth_->findData(*depth) < 0) depth_->addItem(QString::number(*depth), *depth);
    depth_->setCurrentIndex(depth_->findData(*depth));
}

void ApplicationsBrowserWindow::showProgress(bool running) { progress_->setVisible(running); }

void ApplicationsBrowserWindow::showSourceIcon(SourceIcon icon) {
    sourceIcon_->setVisible(icon != SourceIcon::None);
    if (icon == SourceIcon::None) return;
    bool trash = icon == SourceIcon::Trash;
    QIcon image = trash ? KVIconServices::trashIcon() : KVIconServices::badLinkIcon();
    sourceIcon_->setPixmap(image.pixmap(16, 16));
    QString text = localized(trash ? "BrowserInTrash" : "BrowserBadLink");
    sourceIcon_->setToolTip(text);
    sourceIcon_->setAccessibleName(text);
}

void ApplicationsBrowserWindow::showHint(const std::string& text) { hint_->setText(QString::fromStdString(text)); }

void ApplicationsBrowserWindow::showInfoMode(bool info) { infoAction_->setText(localized(info ? "HideInfoTags" : "ShowInfoTags")); }

}  // namespace corvalis
