#pragma once
#include "platform/MessageSink.h"

class QWidget;

namespace mirel {

/// Shows the core's messages as modal message boxes over a parent window.
class WidgetMessageSink final : public MessageSink {
  public:
    explicit WidgetMessageSink(QWidget* parent = nullptr) : m_parent(parent) {}
    void setParent(QWidget* parent) { m_parent = parent; }
    void showMessage(const QString& text, const QString& title, Icon icon) override;
    bool askYesNo(const QString& text, const QString& title) override;
    Answer askYesNoCancel(const QString& text, const QString& title) override;

  private:
    QWidget* m_parent;
};

} // namespace mirel
