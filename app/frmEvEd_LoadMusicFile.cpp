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
    , Option1_0(new QRadioButton("Start (0:00.0)", this))
    , Option1_1(new QRadioButton(ToQt("Current (" + core::FormatTimePos(project.Player_LTimePos(), false) + ")"), this))
    , Option1_2(new QRadioButton("After:", this))
    , Combo1(new controls::Combo(this))
{
    setWindowTitle("Load music file");
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    rows->setSpacing(kRowSpacing);
    rows->addWidget(Option1_0);
    rows->addWidget(Option1_1);
    auto* after = new QHBoxLayout;
    after->addWidget(Option1_2);
    after->addWidget(Combo1);
    rows->addLayout(after);
    Option1_0->setChecked(true);
    Combo1->setObjectName("Combo1");
    Combo1->setAccessibleName("Event");
    Combo1->setMinimumWidth(kListWidth);
    ListEvents(channel);
    connect(Combo1, &controls::Combo::activated, Option1_2, [this] { Option1_2->setChecked(true); });

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
    Combo1->SetItems(texts);
}

void frmEvEd_LoadMusicFile::accept()
{
    if (Option1_2->isChecked()) {
        const int index = Combo1->currentIndex();
        if (index < 0) {
            m_project.Environment().ports.messages.Show("Please select an event from the list",
                                                        core::Icon::Exclamation);
            return;
        }
        m_position = m_ends.at(static_cast<std::size_t>(index));
    } else {
        m_position = Option1_1->isChecked() ? m_project.Player_LTimePos() : 0;
    }
    QDialog::accept();
}

} // namespace velmora::app
