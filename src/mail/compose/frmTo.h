#pragma once
// The address picker. It lays itself out from section "Emailto" of the
// screen skin; its list is placed by that section's "list" key (left, top,
// width, height, background and text colour, font name and size). The rows
// and the result come from AddressPicker.
#include "ui/SkinDialog.h"

#include <QByteArray>
#include <optional>

class QListWidget;

namespace mirel {

/// frmTo: picks any number of address-book entries.
class frmTo : public SkinDialog {
    Q_OBJECT
public:
    static inline const QByteArray kSection = QByteArrayLiteral("Emailto");

    frmTo(const LayoutEngine& engine, QWidget* parent = nullptr);
    ~frmTo() override;

    /// The selected rows joined by ", " after "OK"; empty otherwise.
    const QByteArray& result() const { return m_result; }
    QListWidget* lstAddressbook() const { return m_list; }

    void buttonClicked(int index) override;
    void runCommand(const QByteArray& command);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void placeList();

    QListWidget* m_list = nullptr;
    QByteArray m_result;
};

} // namespace mirel
