#include "graphs/controls/ChartControl.h"

#include <QAccessibleWidget>

namespace drx9 {

namespace {
QAccessibleInterface* chartInterface(const QString& className, QObject* object) {
    return className == QLatin1String("drx9::ChartControl")
               ? new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::Chart)
               : nullptr;
}
} // namespace

ChartSet::ChartSet(const ChartPorts& ports) {
    QAccessible::installFactory(chartInterface);
    for (std::size_t i = 0; i < charts_.size(); ++i) {
        One& one = charts_[i];
        one.model = std::make_unique<ChartModel>(chartDesign(static_cast<GraphKind>(i)), points_);
        one.graph =
            std::make_unique<ChartGraph>(*one.model, GraphPorts{ports.files, ports.folder, ports.pump});
        one.control = new ChartControl(*one.model, *one.graph, ports);
    }
}

ChartSet::~ChartSet() {
    for (const One& one : charts_) {
        if (one.control != nullptr && one.control->parent() == nullptr) {
            delete one.control;
        }
    }
}

ChartControl& ChartSet::chart(int number) const {
    return *charts_[static_cast<std::size_t>(number - 1)].control;
}

ChartGraph& ChartSet::graph(int number) const {
    return *charts_[static_cast<std::size_t>(number - 1)].graph;
}

std::array<Graph*, 4> ChartSet::graphs() const {
    return {charts_[0].graph.get(), charts_[1].graph.get(), charts_[2].graph.get(), charts_[3].graph.get()};
}

} // namespace drx9
