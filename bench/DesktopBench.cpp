// The desktop tool's window on 20,000 rows, each station beside its limit: the same view on a bare table model of that
// size. What a person waits for is one event until the window has painted; the interface must answer within 100 ms.
// An argument is another number of rows.

#include "WorkingDirectory.h"

#include "Code/ApplicationCore.h"
#include "Code/NoPreview.h"
#include "Code/ParticleData.h"
#include "Desktop/DesktopApplication.h"
#include "Desktop/DesktopMainForm.h"
#include "Desktop/ParticleColumns.h"
#include "Desktop/ParticleTableModel.h"
#include "Desktop/ParticleTableView.h"

#include <QAbstractTableModel>
#include <QAction>
#include <QCoreApplication>
#include <QLineEdit>
#include <QScrollBar>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace
{

constexpr int RUNS = 7;
constexpr int ANSWER_MILLISECONDS = 100;

/// Numbers in plain vectors, and nothing behind them.
class BareModel final : public QAbstractTableModel
{
public:
    BareModel(int rows, int columns) : Rows(rows), Columns(columns), Values(static_cast<size_t>(rows * columns), 1) {}

    int rowCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : Rows; }
    int columnCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : Columns; }
    QVariant data(const QModelIndex &index, int role) const override
    {
        return role == Qt::DisplayRole ? QVariant(QString::number(Value(index.row(), index.column()))) : QVariant();
    }
    /// One column of all rows.
    void Edit(int column, int value)
    {
        for (int row = 0; row < Rows; ++row) Values[static_cast<size_t>(row * Columns + column)] = value;
        Q_EMIT dataChanged(index(0, column), index(Rows - 1, column));
    }
    int Value(int row, int column) const { return Values[static_cast<size_t>(row * Columns + column)]; }

private:
    int Rows;
    int Columns;
    std::vector<int> Values;
};

/// A preview that has a device and no work, so that a tick costs what the tool itself adds.
class IdlePreview final : public NoPreview
{
public:
    explicit IdlePreview(int &frameCount) : Frames(frameCount) {}

    bool Init_Device(ViewPanel &) override { return true; }
    PreviewStatistics Get_Statistics() override
    {
        PreviewStatistics statistics;
        statistics.ParticlesSimulated = Frames; // another one each time, as of a running effect
        return statistics;
    }
    void Render(bool, bool) override { ++Frames; }

private:
    int &Frames;
};

/// Processor time of a tick with all that it leads to, in milliseconds.
double Measure_Tick(const int &frames)
{
    constexpr auto LENGTH = std::chrono::seconds(3);
    const int first = frames;
    const std::clock_t before = std::clock();
    const auto start = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() - start < LENGTH)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    const double spent = static_cast<double>(std::clock() - before) * 1000.0 / CLOCKS_PER_SEC;
    return spent / std::max(frames - first, 1);
}

/// How long the event loop was kept from its other work, in milliseconds.
template <typename Action>
double Longest_Pause(Action action)
{
    using Clock = std::chrono::steady_clock;
    double longest = 0.0;
    Clock::time_point last = Clock::now();
    QTimer heartbeat;
    QObject::connect(&heartbeat, &QTimer::timeout, &heartbeat, [&] {
        const Clock::time_point now = Clock::now();
        longest = std::max(longest, std::chrono::duration<double, std::milli>(now - last).count());
        last = now;
    });
    heartbeat.start(1);
    action();
    QCoreApplication::processEvents();
    return longest;
}

/// Until nothing is left to be done, painting included. The best of some runs, in milliseconds.
template <typename Action>
double Time(Action action)
{
    double best = 1e9;
    for (int run = 0; run < RUNS; ++run) {
        const auto start = std::chrono::steady_clock::now();
        action(run);
        for (int round = 0; round < 3; ++round) QCoreApplication::processEvents();
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
        best = std::min(best, taken.count());
    }
    return best;
}

bool Print(const char *station, double tool, double bare)
{
    std::printf("%-22s %9.2f %9.2f %8.2f  %s\n", station, tool, bare, tool / bare,
                tool <= ANSWER_MILLISECONDS ? "" : "too slow");
    return tool <= ANSWER_MILLISECONDS;
}

} // namespace

int main(int argc, char **argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    const int wanted = argc > 1 ? std::atoi(argv[1]) : 20000;
    // The samples have near four layers each.
    const WorkingDirectory directory(MK_SAMPLES, wanted * 10 / 37);
    const auto start = std::chrono::steady_clock::now();
    DesktopApplication application(argc, argv);
    int frames = 0;
    ApplicationCore core(std::make_unique<IdlePreview>(frames));
    core.Initialize();
    core.Get_Settings().WorkingDirectory = directory.Get_Path().string();
    DesktopMainForm form(application, core);
    form.Open();
    form.resize(1500, 860);
    QCoreApplication::processEvents();
    const std::chrono::duration<double, std::milli> opened = std::chrono::steady_clock::now() - start;
    const double pause = Longest_Pause([&] { form.Get_Actions().Scan->trigger(); });
    ParticleTableView &table = form.Get_Table();
    const int rows = form.Get_Model().Get_Count();
    if (rows < wanted / 2) return std::fprintf(stderr, "the scan failed\n"), 1;

    BareModel bare(rows, static_cast<int>(Get_Particle_Columns().size()));
    QSortFilterProxyModel bareFilter;
    bareFilter.setSourceModel(&bare);
    QTableView bareTable;
    bareTable.setModel(&bareFilter);
    bareTable.resize(1500, 860);
    bareTable.show();
    QCoreApplication::processEvents();

    std::printf("%d rows; the window opened in %.0f ms\n", rows, opened.count());
    std::printf("during a scan the window answered after %.0f ms at the latest\n", pause);
    const double tick = Measure_Tick(frames);
    std::printf("a tick costs %.3f ms outside of simulation and drawing%s\n", tick, tick < 0.2 ? "" : ": too much");
    form.Set_Preview(false);
    std::printf("                         tool ms   bare ms    ratio\n");
    const auto scroll = [](QTableView &view, int run) { view.verticalScrollBar()->setValue(1000 + run * 900); };
    bool fast =
        Print("scroll", Time([&](int run) { scroll(table, run); }), Time([&](int run) { scroll(bareTable, run); }));
    fast &= Print("select all", Time([&](int) { table.clearSelection(), table.selectAll(); }),
                  Time([&](int) { bareTable.clearSelection(), bareTable.selectAll(); }));
    const int column = Find_Particle_Column("DynamicLODFarDistancePerThousandth");
    const double edit = Time([&](int run) { form.Get_Model().setData(form.Get_Model().index(0, column), 100 + run); });
    fast &= Print("edit of all rows", edit, Time([&](int run) { bare.Edit(column, run); }));
    if (form.Get_Model().Get_Row(rows - 1)->Get_DynamicLODFarDistancePerThousandth() != 100 + RUNS - 1)
        return std::fprintf(stderr, "the edit didn't reach all rows\n"), 1;
    table.clearSelection();
    fast &= Print("filter", Time([&](int run) { form.Get_Filter_Field().setText(run % 2 ? "smoke" : "fire"); }),
                  Time([&](int run) { bareFilter.setFilterFixedString(run % 2 ? "1" : "2"); }));
    fast &= Print("no filter", Time([&](int run) { form.Get_Filter_Field().setText(run % 2 ? "smoke" : ""); }),
                  Time([&](int run) { bareFilter.setFilterFixedString(run % 2 ? "2" : ""); }));
    form.Get_Filter_Field().clear();
    fast &= Print("order by a column", Time([&](int) { table.Cycle_Order(column); }),
                  Time([&](int run) { bareFilter.sort(column, run % 2 ? Qt::AscendingOrder : Qt::DescendingOrder); }));
    return fast && tick < 0.2 ? 0 : 1;
}
