#pragma once

#include <QtCore/QList>
#include <QtWidgets/QFrame>

class CxChain;
class CxChainable;
class QVBoxLayout;

/// Lists the stages of a view's processing chain; the user can switch them on and off and remove them. Hidden while
/// there are no stages.
class ChainPanel : public QFrame
{
    Q_OBJECT
public:
    /// end is the chain's object that stands for the view; the panel does not show it. The chain must outlive the
    /// panel.
    ChainPanel(CxChain& chain, const CxChainable* end, QWidget* parent = nullptr);

private:
    void showStages();
    void addRow(CxChainable& stage);

    CxChain& m_chain;
    const CxChainable* m_end;
    QVBoxLayout* m_rows;
    QList<CxChainable*> m_shown; ///< only for comparison: some stages may be deleted already
};
