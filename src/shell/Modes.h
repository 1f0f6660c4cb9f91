#pragma once
// Program modes: what the designer (1), the contractor (2) and the client (3) may change.
#include "lists/ListEditing.h"

class QWidget;

namespace lists {
class ListView;
}

namespace documents {
class ProjectWindow;
class Form1;
class Form2;
class Form3;
class Form4;
} // namespace documents

namespace shell {

class MDIForm1;

// Read-only and editable looks of a text box, drop-down or rich-text box; nothing happens
// when the control already has the requested state.
void DisableControl(QWidget* control);
void EnableControl(QWidget* control);
// Read-only and editable lists. EnableListView gives the list its own kind back.
void DisableListView(lists::ListView* view);
void EnableListView(lists::ListView* view);

// Applies the mode to a project window by its kind; with fields false only the menu and
// toolbar state of the window is set (when it becomes the active one).
void EnableControlsPage(MDIForm1& main, documents::ProjectWindow* window, bool fields);
void EnableControlsPage1(MDIForm1& main, documents::Form1* window, bool fields = true);
void EnableControlsPage2(MDIForm1& main, documents::Form2* window, bool fields = true);
void EnableControlsPage3(MDIForm1& main, documents::Form3* window, bool fields = true);
void EnableControlsPage4(MDIForm1& main, documents::Form4* window, bool fields = true);
void EnableControlsForm6(MDIForm1& main);

// The refusal message of the current mode lives with the list editing rules that use it.
using lists::ShowDeny;

} // namespace shell
