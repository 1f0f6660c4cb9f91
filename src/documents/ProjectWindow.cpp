#include "documents/ProjectWindow.h"

#include "documents/Controls.h"
#include "documents/DocumentHost.h"
#include "lists/ListModel.h"
#include "lists/ListView.h"

#include <QCloseEvent>
#include <QDragEnterEvent>

namespace documents {

ProjectWindow::ProjectWindow(DocumentHost& host, int kind, QWidget* parent)
    : QWidget(parent)
    , m_host(host)
    , m_kind(kind) {
    setAttribute(Qt::WA_DeleteOnClose);
    // Anything dragged over the window outside a list shows the no-drop pointer.
    setAcceptDrops(true);
}

ProjectWindow::~ProjectWindow() = default;

void ProjectWindow::prepareNewProject() {}

lists::ListModel* ProjectWindow::list(int i) const {
    if (i < 0 || i >= listCount() || !ListView1[i]) return nullptr;
    return ListView1[i]->list();
}

TextBox* ProjectWindow::makeText(int i, bool multiLine) {
    auto* t = new TextBox(multiLine, this);
    t->setObjectName(QStringLiteral("Text1_%1").arg(i));
    if (static_cast<int>(Text1.size()) <= i) Text1.resize(i + 1, nullptr);
    Text1[i] = t;
    connect(t, &TextBox::changed, this, [this] { m_host.contentChanged(this); });
    return t;
}

ComboBox* ProjectWindow::makeCombo(int i) {
    auto* c = new ComboBox(this);
    c->setObjectName(QStringLiteral("Combo1_%1").arg(i));
    if (static_cast<int>(Combo1.size()) <= i) Combo1.resize(i + 1, nullptr);
    Combo1[i] = c;
    connect(c, &ComboBox::changed, this, [this] { m_host.contentChanged(this); });
    return c;
}

lists::ListView* ProjectWindow::makeList(int i, const QString& kind) {
    auto* model = new lists::ListModel(this);
    model->setKind(kind);
    auto* view = new lists::ListView(this);
    view->setObjectName(QStringLiteral("ListView1_%1").arg(i));
    view->setList(model);
    view->setIndex(i);
    if (static_cast<int>(ListView1.size()) <= i) ListView1.resize(i + 1, nullptr);
    ListView1[i] = view;
    connect(view, &lists::ListView::focusEntered, this, [this, view] { m_host.listFocused(view); });
    return view;
}

void ProjectWindow::closeEvent(QCloseEvent* event) {
    emit closing();
    QWidget::closeEvent(event);
}

void ProjectWindow::dragEnterEvent(QDragEnterEvent* event) { event->ignore(); }

void ProjectWindow::dragMoveEvent(QDragMoveEvent* event) { event->ignore(); }

} // namespace documents
