#pragma once
// The preview ("TAMRIK 2006 (Esikatselu)"): the run's pages one at a time, drawn by the same
// code as on paper, with page moves, zoom and a movable page.
#include <QDialog>
#include <QPoint>
#include <vector>

class QAction;
class QLabel;
class QMenu;
class QMenuBar;
class QStatusBar;
class QToolBar;

namespace print {
class PrintRun;
}

namespace print::ui {

class PrintHost;

class Form12 : public QDialog {
    Q_OBJECT
public:
    // How the preview ended: closed, or with its print or PDF command.
    enum Outcome { Closed = 0, Print = 2, Pdf = 3 };

    Form12(PrintHost& host, PrintRun& run, QWidget* parent = nullptr);
    ~Form12() override;

    int CurrentPage = 0; // 0 before the first page is shown
    int LastPage = 0;
    float scale() const { return m_scale; }
    QPoint origin() const { return m_origin; }

    // The preview's page moves; Next to First are the first four entries of "&Näytä" in order.
    enum class PageMove { Redraw, Next, Previous, Last, First };
    void PrintPreviewPage(PageMove mode);
    void zoomOut();
    void zoomIn();
    void setZoom(float scale);
    // Moves the page: steps of a twelfth of the inner width and a sixth of the inner height.
    void moveRight();
    void moveLeft();
    void moveUp();
    void moveDown();
    // A mouse drag from one point to another moves the page with the pointer.
    void drag(QPoint from, QPoint to);

    // Panel 1 "Sivu n (N)", panel 2 "Suurennos s%".
    QString statusText(int panel) const;

    QMenuBar* menuBar = nullptr;
    // The entries of "&Näytä" by index, the separators 4 and 9 included; 12 is "Suurennos".
    std::vector<QAction*> mnuView;
    std::vector<QAction*> zoomSteps; // "400%", "200%", "&100%", "75%", "50%"
    QToolBar* Toolbar1 = nullptr;
    QStatusBar* StatusBar1 = nullptr;
    QWidget* canvas() const { return m_canvas; }

    // Draws the current page as the window shows it (the canvas paints through this).
    void paintPage(QPainter& painter);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void done(int result) override;

private:
    // The constructor's parts.
    void createMenus();
    void createToolbar();
    void start();
    // Keeps the window within the screen's available area: the size the user left it at when
    // that fits, else as much as fits.
    void fitToScreen();
    void redraw();
    void updateStatus();
    QAction* addToolButton(const QString& key, const QString& tip, const QIcon& icon, void (Form12::*slot)());

    PrintHost& m_host;
    PrintRun& m_run;
    QWidget* m_canvas = nullptr;
    QLabel* m_panels[2] = {nullptr, nullptr};
    float m_scale = 1.0f;
    QPoint m_origin; // the top-left corner of the view on the page, in pixels
    bool m_started = false;
};

} // namespace print::ui
