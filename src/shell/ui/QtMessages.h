#pragma once
// Messages shown as modal message boxes over the main window.
#include "base/Messages.h"

class QWidget;

namespace vexo {

class QtMessages : public Messages {
public:
    explicit QtMessages(QWidget* parent = nullptr) : m_parent(parent) {}
    void setParent(QWidget* parent) { m_parent = parent; }
    MsgAnswer show(const Message& message) override;

private:
    QWidget* m_parent;
};

} // namespace vexo
