// Building, laying out and showing a panel section of six controls (a title, a wrapped
// description, a location link, a preset popup, a button and a progress bar) through the
// toolkit's nodes and the library's stack layout, against the same six Qt widgets in a
// QVBoxLayout. Each run of ours also times the baseline for as many rounds and reports
// "ratio" = our time / baseline time. Offscreen Qt; widgets are shown without reaching a screen.
#include <chrono>
#include <cstdlib>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWidget>

#include <benchmark/benchmark.h>

#include <kelcore/threads/MainThread.h>
#include <kelui/controls/UI_HotTextButton.h>
#include <kelui/controls/UI_Popup.h>
#include <kelui/controls/UI_ProgressBar.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/controls/UI_TextButton.h>
#include <kelui/ui/UI_NodeManager.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/sharedui/VStackView.h>
#include <vantrokelui/sharedui/WorkflowSectionView.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char16_t* kDescription =
    u"Share a review link to the sequence. Reviewers comment on every frame in any browser.";

template <class T>
boost::intrusive_ptr<T> Shown(boost::intrusive_ptr<T> node) {
    node->UI_Show(true);
    return node;
}

void BuildOurs() {
    using namespace kelui::controls;
    boost::intrusive_ptr<vantrokelui::sharedui::VStackView> stack(
        new vantrokelui::sharedui::VStackView);
    stack->SetMargin(15.0f);
    stack->SetSpacing(8.0f);
    boost::intrusive_ptr<UI_StaticText> title(new UI_StaticText);
    title->SetFontStyleName("Bold");
    title->SetText(u"Share for review:");
    boost::intrusive_ptr<UI_StaticText> description(new UI_StaticText);
    description->SetMultiLine(true);
    description->SetText(kDescription);
    boost::intrusive_ptr<UI_HotTextButton> location(new UI_HotTextButton);
    location->SetTextTruncation(3);
    location->SetText(u"Studio / Editors / Alpha / Reviews");
    boost::intrusive_ptr<UI_Popup> presets(new UI_Popup);
    presets->AddItem(u"H.264 1080p", -1);
    presets->AddItem(u"H.264 720p", -1);
    presets->SetValue(0);
    boost::intrusive_ptr<UI_TextButton> share(new UI_TextButton);
    share->SetText(u"Share");
    boost::intrusive_ptr<UI_ProgressBar> progress(new UI_ProgressBar);
    progress->SetProgress(420, 1000);
    for (const boost::intrusive_ptr<kelui::ui::UI_Node>& node :
         std::initializer_list<boost::intrusive_ptr<kelui::ui::UI_Node>>{
             title, description, location, presets, share, progress}) {
        node->UI_Show(true);
        stack->ChildPushBack(node);
    }
    description->UI_SetLocalRectF({0.0f, 0.0f, 310.0f, 0.0f});  // wraps at the column's width
    stack->UI_Show(true);
    boost::intrusive_ptr<vantrokelui::sharedui::WorkflowSectionView> section(
        new vantrokelui::sharedui::WorkflowSectionView(stack, {}, nullptr));
    section->UI_SetDrawSupplier(kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
    const auto size = vantrokelui::sharedui::GetRecommendedSize(section);
    section->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, size.y});
    section->GetWidget()->show();
    QApplication::processEvents();
    benchmark::DoNotOptimize(section->GetWidget()->geometry());
}

void BuildBaseline() {
    QWidget section;
    section.setAttribute(Qt::WA_DontShowOnScreen, true);
    auto* layout = new QVBoxLayout(&section);
    layout->setContentsMargins(15, 15, 15, 15);
    layout->setSpacing(8);
    auto* title = new QLabel(QStringLiteral("Share for review:"));
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    auto* description = new QLabel(QString::fromUtf16(kDescription));
    description->setWordWrap(true);
    auto* location = new QPushButton(QStringLiteral("Studio / Editors / Alpha / Reviews"));
    location->setFlat(true);
    auto* presets = new QComboBox;
    presets->addItems({QStringLiteral("H.264 1080p"), QStringLiteral("H.264 720p")});
    auto* share = new QPushButton(QStringLiteral("Share"));
    auto* progress = new QProgressBar;
    progress->setRange(0, 1000);
    progress->setValue(420);
    for (QWidget* widget : {static_cast<QWidget*>(title), static_cast<QWidget*>(description),
                            static_cast<QWidget*>(location), static_cast<QWidget*>(presets),
                            static_cast<QWidget*>(share), static_cast<QWidget*>(progress)}) {
        layout->addWidget(widget);
    }
    section.setFixedWidth(340);
    section.show();
    QApplication::processEvents();
    benchmark::DoNotOptimize(section.geometry());
}

void BM_Baseline_QVBoxLayoutSection(benchmark::State& state) {
    for (auto _ : state) {
        BuildBaseline();
    }
}
BENCHMARK(BM_Baseline_QVBoxLayoutSection)->Unit(benchmark::kMicrosecond);

void BM_NodeSection(benchmark::State& state) {
    Clock::duration ours{};
    for (auto _ : state) {
        const auto start = Clock::now();
        BuildOurs();
        ours += Clock::now() - start;
    }
    // The baseline for as many rounds, in the same run.
    const auto baselineStart = Clock::now();
    for (benchmark::IterationCount i = 0; i < state.iterations(); ++i) {
        BuildBaseline();
    }
    const auto baseline = Clock::now() - baselineStart;
    state.counters["ratio"] = std::chrono::duration<double>(ours).count() /
                              std::chrono::duration<double>(baseline).count();
}
BENCHMARK(BM_NodeSection)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication application(argc, argv);
    kelcore::threads::SetMainThread();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
