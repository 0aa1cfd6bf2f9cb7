#pragma once

#include <QtCore/QList>
#include <QtWidgets/QFrame>

class CxChain;
class CxChainable;
class QVBoxLayout;

/// Shows the stages of a view's processing chain, to be switched and removed by the user. Hidden while there are none.
class ChainPanel : public QFrame
{
    Q_OBJECT
public:
    /// end is the object of the chain that stands for the view; it is not shown. The chain outlives the panel.
    ChainPanel(CxChain& chain, const CxChainable* end, QWidget* parent = nullptr);

private:
    void showStages();
    void addRow(CxChainable& stage);

    CxChain& m_chain;
    const CxChainable* m_end;
    QVBoxLayout* m_rows;
    QList<CxChainable*> m_shown; ///< may hold stages that are gone: compared only
};
