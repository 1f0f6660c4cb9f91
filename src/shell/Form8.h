#pragma once
// The settings dialog "Asetukset": edits the settings in memory; nothing reaches the settings
// store before the program ends.
#include <QDialog>
#include <vector>

class QCheckBox;
class QComboBox;
class QHBoxLayout;
class QPushButton;
class QTabWidget;

namespace documents {
class TextBox;
}

namespace shell {

class MDIForm1;

class Form8 : public QDialog {
    Q_OBJECT
public:
    explicit Form8(MDIForm1& main);

    // "Tallenna ja sulje": copies the fields into the settings in memory and closes.
    void saveAndClose();
    // "Vaihda...": the fonts of the current printer into the font drop-down.
    void changeFont();
    // "Hae...": the logo in the image viewer; the field then shows the logo's file.
    void chooseLogo();
    // "Palauta ohjelman alkuperäisasetukset".
    void restoreDefaults();

    QTabWidget* SSTab1 = nullptr;
    std::vector<documents::TextBox*> Text1; // 0..5
    std::vector<documents::TextBox*> Text2; // 0..5
    documents::TextBox* Text3 = nullptr;
    documents::TextBox* Text4 = nullptr; // minutes between autosaved copies
    documents::TextBox* Text5 = nullptr; // undo steps kept per project
    std::vector<QComboBox*> Combo1;      // 0
    std::vector<QCheckBox*> Check1;      // 1, 2 (index 0 unused)
    std::vector<QCheckBox*> Check2;      // 0
    std::vector<QPushButton*> Command1;  // 0..5

protected:
    void done(int result) override;

private:
    // The constructor's tabs and its row of buttons.
    QWidget* generalTab();
    QWidget* formatTab();
    QWidget* officeTab();
    QHBoxLayout* buttonRow();
    void loadFields();
    MDIForm1& m_main;
};

} // namespace shell
