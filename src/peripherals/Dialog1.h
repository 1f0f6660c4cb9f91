#pragma once
// The About box.
#include <QDialog>
#include <vector>

class QLabel;

namespace peripherals {

class Dialog1 : public QDialog {
    Q_OBJECT
public:
    Dialog1(const QString& version, const QString& copyright, const QString& company,
            QWidget* parent = nullptr);
    std::vector<QLabel*> Label1;
};

} // namespace peripherals
