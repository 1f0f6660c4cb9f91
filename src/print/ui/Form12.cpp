#include "print/ui/Form12.h"

#include "print/PageModel.h"
#include "print/PrintRun.h"
#include "print/ui/PrintHost.h"
#include "print/ui/PrintIcons.h"
#include "platform/ui/Icons.h"

#include <QAction>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QVBoxLayout>

namespace print::ui {

namespace {

// Room around the paper when the page lies at its start position.
constexpr int kBorder = 12;
// The preview's pixels.
constexpr double kTwipsPerPixel = 15;

// The page canvas: paints through the preview and turns mouse drags into page moves.
class PreviewCanvas : public QWidget {
public:
    explicit PreviewCanvas(Form12& preview)
        : QWidget(&preview)
        , m_preview(preview) {
        setObjectName(QStringLiteral("Canvas"));
        setAttribute(Qt::WA_OpaquePaintEvent);
        setFocusPolicy(Qt::NoFocus);
        setMinimumSize(200, 200);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        m_preview.paintPage(painter);
    }
    void mousePressEvent(QMouseEvent* event) override {
        if (m_dragging) return;
        m_dragging = true;
        m_pressed = event->position().toPoint();
        setCursor(Qt::SizeAllCursor);
    }
    void mouseReleaseEvent(QMouseEvent* event) override {
        if (!m_dragging) return;
        m_dragging = false;
        unsetCursor();
        m_preview.drag(m_pressed, event->position().toPoint());
    }

private:
    Form12& m_preview;
    bool m_dragging = false;
    QPoint m_pressed;
};

} // namespace

Form12::Form12(PrintHost& host, PrintRun& run, QWidget* parent)
    : QDialog(parent)
    , m_host(host)
    , m_run(run) {
    setObjectName(QStringLiteral("Form12"));
    setWindowTitle(QStringLiteral("TAMRIK 2006") + QStringLiteral(" (Esikatselu)"));
    setSizeGripEnabled(true);
    LastPage = m_run.TotalPages();

    createMenus();
    createToolbar();

    m_canvas = new PreviewCanvas(*this);
    StatusBar1 = new QStatusBar(this);
    StatusBar1->setObjectName(QStringLiteral("StatusBar1"));
    for (int i = 0; i < 2; ++i) {
        m_panels[i] = new QLabel(StatusBar1);
        m_panels[i]->setMinimumWidth(140);
        StatusBar1->addWidget(m_panels[i]);
    }

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->setMenuBar(menuBar);
    layout->addWidget(Toolbar1);
    layout->addWidget(m_canvas, 1);
    layout->addWidget(StatusBar1);

    resize(900, 1000);
    m_host.restorePosition(12, this);
    fitToScreen();
}

// "&Peruuta", "&Näytä" with its page moves, shifts and zoom steps, then printing and help.
void Form12::createMenus() {
    menuBar = new QMenuBar(this);
    QAction* cancel = menuBar->addAction(QStringLiteral("&Peruuta"));
    connect(cancel, &QAction::triggered, this, &QDialog::reject);
    QMenu* view = menuBar->addMenu(QStringLiteral("&Näytä"));
    auto entry = [&](const char* text, void (Form12::*slot)()) {
        QAction* a = view->addAction(QString::fromUtf8(text));
        if (slot) connect(a, &QAction::triggered, this, slot);
        mnuView.push_back(a);
    };
    entry("&Seuraava sivu (PgDn)", nullptr);
    entry("&Edellinen sivu (PgUp)", nullptr);
    entry("Vii&meinen sivu (End)", nullptr);
    entry("E&nsimmäinen sivu (Home)", nullptr);
    mnuView.push_back(view->addSeparator());
    entry("Siirrä sivua &oikealle (oikea nuoli)", &Form12::moveRight);
    entry("Siirrä sivua &vasemmalle (vasen nuoli)", &Form12::moveLeft);
    entry("Siirrä sivua &ylöspäin (nuoli ylös)", &Form12::moveUp);
    entry("Siirrä sivua &alaspäin (nuoli alas)", &Form12::moveDown);
    mnuView.push_back(view->addSeparator());
    entry("Loi&tonna sivua (-)", &Form12::zoomOut);
    entry("Lähennä siv&ua (+)", &Form12::zoomIn);
    const PageMove moves[] = {PageMove::Next, PageMove::Previous, PageMove::Last, PageMove::First};
    for (int i = 0; i < 4; ++i)
        connect(mnuView[i], &QAction::triggered, this, [this, move = moves[i]] { PrintPreviewPage(move); });
    QMenu* steps = view->addMenu(QStringLiteral("Suurennos"));
    mnuView.push_back(steps->menuAction());
    const struct {
        const char* text;
        float scale;
    } fixed[] = {{"400%", 4.0f}, {"200%", 2.0f}, {"&100%", 1.0f}, {"75%", 0.75f}, {"50%", 0.5f}};
    for (const auto& f : fixed) {
        QAction* a = steps->addAction(QString::fromUtf8(f.text));
        const float s = f.scale;
        connect(a, &QAction::triggered, this, [this, s] { setZoom(s); });
        zoomSteps.push_back(a);
    }
    QAction* print = menuBar->addAction(QStringLiteral("&Tulosta..."));
    connect(print, &QAction::triggered, this, [this] { done(Print); });
    QAction* pdf = menuBar->addAction(QStringLiteral("Tulosta P&DF-tiedostoon..."));
    connect(pdf, &QAction::triggered, this, [this] { done(Pdf); });
    QAction* help = menuBar->addAction(QStringLiteral("&Ohjeet"));
    connect(help, &QAction::triggered, this, [this] { m_host.showHelp(PrintHost::kHelpTopic, this); });
}

// The tool buttons: shifts of the page, page moves, zoom, printing and PDF.
void Form12::createToolbar() {
    Toolbar1 = new QToolBar(this);
    Toolbar1->setObjectName(QStringLiteral("Toolbar1"));
    Toolbar1->setIconSize(QSize(24, 24));
    QStyle* st = style();
    addToolButton(QStringLiteral("Move right"), QStringLiteral("Siirrä sivua oikealle"),
                  st->standardIcon(QStyle::SP_ArrowRight), &Form12::moveRight);
    addToolButton(QStringLiteral("Move left"), QStringLiteral("Siirrä sivua vasemmalle"),
                  st->standardIcon(QStyle::SP_ArrowLeft), &Form12::moveLeft);
    addToolButton(QStringLiteral("Move up"), QStringLiteral("Siirrä sivua ylöspäin"),
                  st->standardIcon(QStyle::SP_ArrowUp), &Form12::moveUp);
    addToolButton(QStringLiteral("Move down"), QStringLiteral("Siirrä sivua alaspäin"),
                  st->standardIcon(QStyle::SP_ArrowDown), &Form12::moveDown);
    Toolbar1->addSeparator();
    QAction* previous = addToolButton(QStringLiteral("Previous page"), QStringLiteral("Edellinen sivu"),
                                      platform::toolIcon(QStringLiteral("PreviousPage")), nullptr);
    connect(previous, &QAction::triggered, this, [this] { PrintPreviewPage(PageMove::Previous); });
    QAction* next = addToolButton(QStringLiteral("Next page"), QStringLiteral("Seuraava sivu"),
                                  platform::toolIcon(QStringLiteral("NextPage")), nullptr);
    connect(next, &QAction::triggered, this, [this] { PrintPreviewPage(PageMove::Next); });
    Toolbar1->addSeparator();
    addToolButton(QStringLiteral("Zoom out"), QStringLiteral("Loitonna sivua"),
                  platform::toolIcon(QStringLiteral("ZoomOut")), &Form12::zoomOut);
    addToolButton(QStringLiteral("Zoom in"), QStringLiteral("Lähennä sivua"),
                  platform::toolIcon(QStringLiteral("ZoomIn")), &Form12::zoomIn);
    Toolbar1->addSeparator();
    QAction* printButton =
        addToolButton(QStringLiteral("Print"), QStringLiteral("Tulosta..."), printerIcon(), nullptr);
    connect(printButton, &QAction::triggered, this, [this] { done(Print); });
    QAction* pdfButton = addToolButton(QStringLiteral("Pdf"), QStringLiteral("Tulosta PDF-tiedostoon..."),
                                       platform::toolIcon(QStringLiteral("Pdf")), nullptr);
    connect(pdfButton, &QAction::triggered, this, [this] { done(Pdf); });
}

void Form12::fitToScreen() {
    QScreen* screen = parentWidget() ? parentWidget()->screen() : this->screen();
    if (!screen) screen = QGuiApplication::primaryScreen();
    if (!screen) return;
    const QRect room = screen->availableGeometry();
    // The frame around the window (known once it is shown; room for a title bar before).
    const QRect frame = frameGeometry();
    const QRect inner = geometry();
    QMargins margins(inner.left() - frame.left(), inner.top() - frame.top(), frame.right() - inner.right(),
                     frame.bottom() - inner.bottom());
    if (!isVisible()) margins = QMargins(8, 32, 8, 8);
    const QSize most(room.width() - margins.left() - margins.right(),
                     room.height() - margins.top() - margins.bottom());
    const QSize size = this->size().boundedTo(most).expandedTo(minimumSizeHint().boundedTo(most));
    if (size != this->size()) resize(size);
    // A window placed partly off the screen comes back onto it.
    QRect placed(frameGeometry().topLeft(), QSize(size.width() + margins.left() + margins.right(),
                                                  size.height() + margins.top() + margins.bottom()));
    if (!room.contains(placed)) {
        placed.moveRight(std::min(placed.right(), room.right()));
        placed.moveBottom(std::min(placed.bottom(), room.bottom()));
        placed.moveLeft(std::max(placed.left(), room.left()));
        placed.moveTop(std::max(placed.top(), room.top()));
        move(placed.topLeft());
    }
}

Form12::~Form12() = default;

QAction* Form12::addToolButton(const QString& key, const QString& tip, const QIcon& icon,
                               void (Form12::*slot)()) {
    QAction* a = Toolbar1->addAction(icon, tip);
    a->setObjectName(key);
    a->setData(key);
    a->setToolTip(tip);
    if (slot) connect(a, &QAction::triggered, this, slot);
    return a;
}

void Form12::start() {
    if (m_started) return;
    m_started = true;
    m_scale = StartScale(m_host.previewScale());
    m_run.PrintArea(m_scale);
    CurrentPage = LastPage > 0 ? 1 : 0;
    redraw();
}

void Form12::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    // The system may have placed the window over its owner: keep it, frame and all, on the screen.
    fitToScreen();
    start();
}

void Form12::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    if (!m_started)
        start();
    else
        redraw();
}

void Form12::done(int result) {
    // The zoom of this preview is where the next one starts.
    m_host.setPreviewScale(m_scale);
    m_host.savePosition(12, this);
    QDialog::done(result);
}

void Form12::redraw() {
    updateStatus();
    m_canvas->update();
}

void Form12::updateStatus() {
    m_panels[0]->setText(statusText(1));
    m_panels[1]->setText(statusText(2));
}

QString Form12::statusText(int panel) const {
    if (panel == 1) return QStringLiteral("Sivu %1 (%2)").arg(CurrentPage).arg(LastPage);
    // The zoom in whole percents: the steps of 5 % in or out land between them.
    return QStringLiteral("Suurennos %1%").arg(qRound(m_run.page().ScaleY * 100.0f));
}

void Form12::PrintPreviewPage(PageMove mode) {
    if (!m_started) start();
    int page = CurrentPage;
    switch (mode) {
        case PageMove::Next:
            if (CurrentPage >= LastPage) return;
            page = CurrentPage + 1;
            break;
        case PageMove::Previous:
            if (CurrentPage <= 1) return;
            page = CurrentPage - 1;
            break;
        case PageMove::Last:
            if (CurrentPage == LastPage) return;
            page = LastPage;
            break;
        case PageMove::First:
            if (CurrentPage == 1) return;
            page = 1;
            break;
        case PageMove::Redraw:
            break;
    }
    CurrentPage = page;
    redraw();
}

void Form12::setZoom(float scale) {
    if (!m_started) start();
    m_scale = scale;
    m_run.PrintArea(m_scale);
    redraw();
}

void Form12::zoomOut() {
    setZoom(ZoomOut(m_scale));
}

void Form12::zoomIn() {
    setZoom(ZoomIn(m_scale));
}

void Form12::moveRight() {
    m_origin.rx() += m_canvas->width() / 12;
    redraw();
}

void Form12::moveLeft() {
    m_origin.rx() -= m_canvas->width() / 12;
    redraw();
}

void Form12::moveUp() {
    m_origin.ry() -= m_canvas->height() / 6;
    redraw();
}

void Form12::moveDown() {
    m_origin.ry() += m_canvas->height() / 6;
    redraw();
}

void Form12::drag(QPoint from, QPoint to) {
    m_origin += from - to;
    redraw();
}

void Form12::paintPage(QPainter& painter) {
    painter.fillRect(m_canvas->rect(), QColor(128, 128, 128));
    if (CurrentPage < 1 || CurrentPage > LastPage) return;
    const PageModel& m = m_run.page();
    const QPointF paper(kBorder - m_origin.x(), kBorder - m_origin.y());
    const QRectF sheet(paper, QSizeF(m.PageWidth / kTwipsPerPixel, m.PageHeight / kTwipsPerPixel));
    painter.fillRect(sheet.translated(4, 4), QColor(70, 70, 70));
    painter.fillRect(sheet, Qt::white);
    painter.save();
    painter.setClipRect(sheet);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    m_run.PrintPreviewPage(painter, paper, CurrentPage);
    painter.restore();
}

void Form12::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Escape:
            reject();
            return;
        case Qt::Key_Right:
            moveRight();
            return;
        case Qt::Key_Left:
            moveLeft();
            return;
        case Qt::Key_Up:
            moveUp();
            return;
        case Qt::Key_Down:
            moveDown();
            return;
        case Qt::Key_PageDown:
            PrintPreviewPage(PageMove::Next);
            return;
        case Qt::Key_PageUp:
            PrintPreviewPage(PageMove::Previous);
            return;
        case Qt::Key_End:
            PrintPreviewPage(PageMove::Last);
            return;
        case Qt::Key_Home:
            PrintPreviewPage(PageMove::First);
            return;
        case Qt::Key_Minus:
            zoomOut();
            return;
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            zoomIn();
            return;
        default:
            QDialog::keyPressEvent(event);
    }
}

} // namespace print::ui
