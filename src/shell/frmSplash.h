#pragma once
// The splash window shown while the program starts.
#include <QWidget>

class QProgressBar;

namespace shell {

class frmSplash : public QWidget {
    Q_OBJECT
public:
    explicit frmSplash(QWidget* parent = nullptr);
    void setProgress(int percent);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QProgressBar* ProgressBar1;
};

// "Ohjelmakäännös 4.0.17": the build label of the splash and the About box.
QString versionText();
QString copyrightText();
QString companyText();

} // namespace shell
