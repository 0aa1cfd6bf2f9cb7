#include "ChainPanel.h"

#include "CxChain.h"
#include "CxRTTI.h"
#include "chain/ChainStages.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

namespace {

constexpr int panelWidth = 190; // pixels

QString nameOf(const CxChainable& stage)
{
    const QString className = QString::fromLatin1(stage.metaObject()->className());
    const QString name = CxRTTI::instance()->customNameForClass(className);
    return name.isEmpty() ? className : name;
}

QString summaryOf(const CxChainable& stage)
{
    const auto* imageStage = qobject_cast<const ImageStage*>(&stage);
    return imageStage ? imageStage->summary() : QString();
}

/// A name as the label of a widget, where a single "&" would mark a mnemonic.
QString labelOf(QString name)
{
    return name.replace(QStringLiteral("&"), QStringLiteral("&&"));
}

} // namespace

ChainPanel::ChainPanel(CxChain& chain, const CxChainable* end, QWidget* parent)
    : QFrame(parent)
    , m_chain(chain)
    , m_end(end)
{
    setObjectName(QStringLiteral("chainPanel"));
    setFrameShape(QFrame::StyledPanel);
    setFixedWidth(panelWidth);
    setAutoFillBackground(true);
    auto* layout = new QVBoxLayout(this);
    auto* title = new QLabel(tr("Processing"));
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    layout->addWidget(title);
    m_rows = new QVBoxLayout;
    layout->addLayout(m_rows);
    layout->addStretch();
    connect(&chain, &CxChain::changed, this, &ChainPanel::showStages);
    showStages();
}

void ChainPanel::showStages()
{
    QList<CxChainable*> stages;
    for (CxChainable* object : m_chain.objects()) {
        if (object != m_end)
            stages.append(object);
    }
    setVisible(!stages.isEmpty());
    // Comparing two empty lists would pass null pointers to memcmp.
    if ((stages.isEmpty() && m_shown.isEmpty()) || stages == m_shown)
        return; // each row updates itself
    m_shown = stages;
    while (QLayoutItem* item = m_rows->takeAt(0)) {
        // Not deleted at once: a click on a button of this very row may have led here.
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
    for (CxChainable* stage : stages)
        addRow(*stage);
}

void ChainPanel::addRow(CxChainable& stage)
{
    auto* row = new QWidget;
    auto* layout = new QVBoxLayout(row);
    layout->setContentsMargins(0, 4, 0, 4);
    layout->setSpacing(0);
    auto* line = new QHBoxLayout;
    auto* box = new QCheckBox(labelOf(nameOf(stage)));
    box->setToolTip(tr("Switch this stage on or off"));
    auto* remove = new QToolButton;
    remove->setText(QStringLiteral("\u00d7"));
    remove->setAutoRaise(true);
    remove->setToolTip(tr("Remove this stage"));
    line->addWidget(box, 1);
    line->addWidget(remove);
    layout->addLayout(line);
    auto* summary = new QLabel;
    summary->setTextFormat(Qt::PlainText);
    summary->setWordWrap(true);
    summary->setIndent(22);
    layout->addWidget(summary);
    m_rows->addWidget(row);

    const auto refresh = [&stage, box, summary] {
        box->setChecked(stage.isEnabled());
        summary->setText(summaryOf(stage));
        summary->setVisible(!summary->text().isEmpty());
        summary->setEnabled(stage.isEnabled());
    };
    connect(&stage, &CxChainable::changed, row, refresh);
    connect(box, &QCheckBox::clicked, &stage, [&stage](bool on) { stage.setEnabled(on); });
    connect(remove, &QToolButton::clicked, &stage, &QObject::deleteLater);
    refresh();
}
