#include "app/frmEvEd_LoadMusicFile.h"

#include "app/QtText.h"
#include "controls/Combo.h"
#include "core/TextUtilities.h"
#include "core/Units.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace velmora::app {
namespace {

constexpr int kMargin = 20;
constexpr int kRowSpacing = 14;
constexpr int kListWidth = 240;

} // namespace

frmEvEd_LoadMusicFile::frmEvEd_LoadMusicFile(project::ProjectFile_Class& project, core::ClassID channel,
                                             QWidget* parent)
    : QDialog(parent)
    , m_project(project)
    , m_start(new QRadioButton("Start (0:00.0)", this))
    , m_cursor(new QRadioButton(ToQt("Current (" + core::FormatTimePos(project.Player_LTimePos(), false) + ")"), this))
    , m_after(new QRadioButton("After:", this))
    , m_events(new controls::Combo(this))
{
    setWindowTitle("Load music file");
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    rows->setSpacing(kRowSpacing);
    rows->addWidget(m_start);
    rows->addWidget(m_cursor);
    auto* after = new QHBoxLayout;
    after->addWidget(m_after);
    after->addWidget(m_events);
    rows->addLayout(after);
    m_start->setObjectName("Option1_0");
    m_cursor->setObjectName("Option1_1");
    m_after->setObjectName("Option1_2");
    m_start->setChecked(true);
    m_events->setObjectName("Combo1");
    m_events->setAccessibleName("Event");
    m_events->SetEmptyText("Choose an event");
    m_events->setMinimumWidth(kListWidth);
    ListEvents(channel);
    connect(m_events, &controls::Combo::activated, m_after, [this] { m_after->setChecked(true); });

    auto* buttons = new QHBoxLayout;
    auto* ok = new QPushButton("OK", this);
    auto* cancel = new QPushButton("Cancel", this);
    ok->setObjectName("Command1");
    ok->setDefault(true);
    cancel->setObjectName("Command2");
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    rows->addLayout(buttons);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

void frmEvEd_LoadMusicFile::ListEvents(core::ClassID channel)
{
    QStringList texts;
    if (const project::Channel_Class* found = m_project.Chn_GetChannelClassObj_by_ID(channel)) {
        for (const project::EventRow* row : found->ChannelData->InTimeOrder()) {
            const std::string& title = row->EventOBJ->Title;
            texts.append(ToQt((title.empty() ? "--" : title) + " (" +
                              core::FormatTimePos(core::RoundToInt(row->TimePos), false) + ")"));
            m_ends.push_back(row->TimePos + m_project.util_GetEventOBJ_Length(*row->EventOBJ));
        }
    }
    m_events->SetItems(texts);
}

void frmEvEd_LoadMusicFile::accept()
{
    if (m_after->isChecked()) {
        const int index = m_events->currentIndex();
        if (index < 0) {
            m_project.Environment().ports.messages.Show("Please select an event from the list",
                                                        core::Icon::Exclamation);
            return;
        }
        m_position = m_ends.at(static_cast<std::size_t>(index));
    } else {
        m_position = m_cursor->isChecked() ? m_project.Player_LTimePos() : 0;
    }
    QDialog::accept();
}

} // namespace velmora::app
