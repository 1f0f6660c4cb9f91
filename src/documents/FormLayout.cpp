#include "documents/FormLayout.h"

#include "documents/Controls.h"
#include "documents/ProjectWindow.h"
#include "lists/ui/ListView.h"
#include "platform/ui/PictureBox.h"

#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>

namespace documents {

QLabel* fieldLabel(const QString& text, QWidget* field, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setBuddy(field);
    nameControl(field, text);
    return label;
}

void nameControl(QWidget* field, const QString& text) {
    // The first label beside a field is its name (a unit after it is not); the edit box inside
    // a text box or drop-down is what the screen reader meets, so it gets the name too.
    // Every "&" goes but the first of a pair, which stands for a written "&". A loop, not a
    // regular expression: compiling one for each of a form's fields was nearly a tenth of
    // making the forms.
    QString name;
    name.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i)
        if (text[i] != u'&' || (i + 1 < text.size() && text[i + 1] == u'&')) name += text[i];
    for (QWidget* w = field; w; w = w->focusProxy()) {
        if (w->accessibleName().isEmpty()) w->setAccessibleName(name);
        if (w->focusProxy() == w) break;
    }
}

QLabel* indexedLabel(int index, const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QStringLiteral("Label1_%1").arg(index));
    return label;
}

void setWidthInChars(QWidget* field, int chars, bool fixed) {
    // Room for the frame and, in a drop-down, for the arrow button.
    const int extra = qobject_cast<QComboBox*>(field) ? 34 : 12;
    const int width = field->fontMetrics().averageCharWidth() * chars + extra;
    if (fixed)
        field->setFixedWidth(width);
    else
        field->setMinimumWidth(width);
}

void setVisibleLines(TextBox* box, int lines) {
    QWidget* editor = box->editor();
    auto* plain = qobject_cast<QPlainTextEdit*>(editor);
    const int frame =
        plain ? 2 * plain->frameWidth() + static_cast<int>(2 * plain->document()->documentMargin()) : 8;
    const int height = editor->fontMetrics().lineSpacing() * lines + frame;
    box->setMinimumHeight(height);
    box->setMaximumHeight(height + editor->fontMetrics().lineSpacing() * 2);
}

QGroupBox* framedGrid(const QString& title, QGridLayout*& grid, QWidget* parent) {
    auto* frame = new QGroupBox(title, parent);
    grid = new QGridLayout(frame);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(4);
    return frame;
}

void installScrollingBody(ProjectWindow* window, QWidget* body) {
    auto* scroll = new QScrollArea(window);
    scroll->setObjectName(QStringLiteral("body"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    // Only a frame around the fields: the keyboard goes to them, and they scroll into view.
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(body);
    auto* outer = new QVBoxLayout(window);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(scroll);
}

QSize scrollingBodySizeHint(const QWidget* window) {
    const auto* scroll =
        window->findChild<const QScrollArea*>(QStringLiteral("body"), Qt::FindDirectChildrenOnly);
    if (!scroll || !scroll->widget()) return QSize(640, 480);
    // Room for a vertical scroll bar, which a window lower than its body shows.
    const int bar = scroll->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    return scroll->widget()->sizeHint() + QSize(bar + 4, 4);
}

void connectReturnKeys(ProjectWindow* window) {
    for (TextBox* t : window->Text1)
        if (t && !t->isMultiLine())
            QObject::connect(t, &TextBox::returnPressed, t, [t] { ReturnControl(t); });
    for (ComboBox* c : window->Combo1)
        if (c) QObject::connect(c, &ComboBox::returnPressed, c, [c] { ReturnControl(c); });
}

void stretchListColumn(lists::ListView* view, int column) {
    auto apply = [view, column] {
        if (view->header()->count() >= column)
            view->header()->setSectionResizeMode(column - 1, QHeaderView::Stretch);
    };
    apply();
    QObject::connect(view->model(), &QAbstractItemModel::modelReset, view, apply);
}

std::vector<QPushButton*> pictureButtons(const char* const (&captions)[3], const QString& arrayName,
                                         int firstPicture, QBoxLayout* row,
                                         const std::function<void(int)>& request) {
    std::vector<QPushButton*> buttons;
    for (int i = 0; i < 3; ++i) {
        auto* button = new QPushButton(QString::fromUtf8(captions[i]));
        button->setObjectName(QStringLiteral("%1_%2").arg(arrayName).arg(i));
        QObject::connect(button, &QPushButton::clicked, button,
                         [request, n = firstPicture + i] { request(n); });
        buttons.push_back(button);
        row->addWidget(button, 0, Qt::AlignBottom);
    }
    return buttons;
}

platform::PictureBox* pictureSlot(int index, const QString& toolTip, QWidget* parent) {
    auto* box = new platform::PictureBox(parent);
    box->setObjectName(QStringLiteral("Image1_%1").arg(index));
    box->setFixedSize(72, 54);
    box->setToolTip(toolTip);
    return box;
}

} // namespace documents
