#pragma once
// The import dialog: one drop-down list per address field, placed by the
// keys "field00" ... "field16" of section "ADDRESSIMPORT", each offering the
// file's columns. "OK" hands the choices to the import, which runs while the
// dialog stays up and shows its progress; "QUIT" leaves with no choice.
#include "organiser/AddressCsv.h"
#include "ui/SkinDialog.h"

#include <array>
#include <functional>

class QComboBox;
class QLabel;

namespace mirel {

/// frmImport: assigns a file column to each of the seventeen fields.
class frmImport : public SkinDialog {
    Q_OBJECT
public:
    static inline const QByteArray kSection = QByteArrayLiteral("ADDRESSIMPORT");

    /// Lists offer `columns` in order after an empty choice; `preselected`
    /// gives each list's first choice; `captions` name the lists for
    /// assistive technology.
    frmImport(const LayoutEngine& engine, const QList<QByteArray>& columns,
              const FieldCaptions& captions, const ColumnAssignment& preselected,
              QWidget* parent = nullptr);
    ~frmImport() override;

    QComboBox* comField(int k) const { return m_fields.at(k); }
    /// The column assignment text after "OK"; empty after "QUIT".
    const QByteArray& Assignment() const { return m_assignment; }
    /// Runs on "OK" with the assignment text before the dialog closes.
    void setWork(std::function<void(const QByteArray&)> work) { m_work = std::move(work); }
    /// Shows how far the work got and now and then lets window events run.
    void showProgress(int done, int total);

    void buttonClicked(int index) override;
    void runCommand(const QByteArray& command);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    std::array<QComboBox*, 17> m_fields{};
    QLabel* m_progress = nullptr;
    QByteArray m_assignment;
    std::function<void(const QByteArray&)> m_work;
    bool m_busy = false;
    qint64 m_lastShown = 0;
};

} // namespace mirel
