#pragma once
// Small helpers that the project windows share for laying out their fields with Qt layouts:
// labels tied to their fields, field widths in characters, framed areas and the scrolling
// body that keeps a window readable when the MDI area is smaller than its contents.
#include <QSize>
#include <QString>
#include <functional>
#include <vector>

class QBoxLayout;
class QGridLayout;
class QPushButton;
class QGroupBox;
class QLabel;
class QLayout;
class QWidget;

namespace lists {
class ListView;
}

namespace platform {
class PictureBox;
}

namespace documents {

class ProjectWindow;
class TextBox;

// A label whose buddy is `field`: the label's mnemonic focuses the field, and the pairing says
// which field the label names.
QLabel* fieldLabel(const QString& text, QWidget* field, QWidget* parent = nullptr);
// The accessible name of a field (and of the edit box it hands the focus to) from the text of
// its label, without the mnemonic; a field already named keeps its name.
void nameControl(QWidget* field, const QString& text);

// A label named "Label1_<index>", the index the window's procedures address it by.
QLabel* indexedLabel(int index, const QString& text, QWidget* parent = nullptr);

// Sets a field's width to about `chars` average characters of its font. `fixed` keeps it at
// that width; otherwise it is the minimum and the field may grow with the window.
void setWidthInChars(QWidget* field, int chars, bool fixed = false);

// Makes a multi-line box tall enough for `lines` lines of its font.
void setVisibleLines(TextBox* box, int lines);

// A framed area with a caption and a grid inside.
QGroupBox* framedGrid(const QString& title, QGridLayout*& grid, QWidget* parent = nullptr);

// Puts the window's body into a scroll area that fills the window; the body keeps its
// natural size and scroll bars appear only when the window is smaller.
void installScrollingBody(ProjectWindow* window, QWidget* body);

// The size a window with a scrolling body asks for: its body's natural size.
QSize scrollingBodySizeHint(const QWidget* window);

// Enter in a single-line box or a drop-down of the window's control arrays moves the focus on.
void connectReturnKeys(ProjectWindow* window);

// Lets a list's text column (1-based) take the width the others leave, also after the list
// has been filled anew.
void stretchListColumn(lists::ListView* view, int column);

// The three picture buttons of a card, named "<arrayName>_0" .. "_2", added to `row`; a click
// on button i calls `request` with the picture number `firstPicture` + i.
std::vector<QPushButton*> pictureButtons(const char* const (&captions)[3], const QString& arrayName,
                                         int firstPicture, QBoxLayout* row,
                                         const std::function<void(int)>& request);

// A small picture slot "Image1_<index>".
platform::PictureBox* pictureSlot(int index, const QString& toolTip, QWidget* parent = nullptr);

} // namespace documents
