#pragma once
// From the exports of a presets file to exporters with their target paths.

#include "ExportPlan.h"
#include "PlacedExporter.h"
#include "Record.h"

#include "Core/Preset.h"

#include <optional>
#include <vector>

/// One export of a preset, ready to run unless it has failed already.
struct PlannedExport
{
    QString preset;

    /// Unset when the plan failed; why is in the record.
    std::optional<FormatEntry> format;
    ExportPlan plan;
    ExportRecord record;

    /// Says for people which export this is.
    QString label() const;
};

/// Plans the exports of presets for one project. Current layer and view of the project
/// are put back before each export, so that none depends on those before it.
class PresetPlanner
{
public:
    /// @param presetsFile relative paths of exports start from its folder
    /// @param writing its output takes the place of the folders that the exports say
    PresetPlanner(Session& session, QString const& presetsFile, WritingChoices const& writing);

    PlannedExport plan(QString const& preset, Export::Preset::ExportInfo const& stored) const;

    /// Makes what the project came with current again.
    void restorePlace() const;

private:
    ExportPlan makePlan(FormatEntry const& format, Export::Preset::ExportInfo info, ExportRecord& record) const;
    std::vector<Anm::View> viewsOf(FormatEntry const& format, std::vector<Anm::View> const& stored,
                                   ExportRecord& record) const;
    Anm::Context referenceFrameOf(Export::UserTrackingOptions const& options, Anm::View const& view) const;
    QString pathOf(std::optional<QString> const& stored, QString const& suggestion, QString const& extension) const;

    Session& m_session;
    QString m_presetsFolder;
    std::optional<QString> m_folder;
    bool m_unsafeNames;
    unsigned int m_currentLayer;
    Anm::View m_currentView;
    std::shared_ptr<TakenPaths> m_taken;
};

/// @throws Failure as a refusal that names both when two exports have one path
void refuseSharedPaths(std::vector<PlannedExport> const& exports);
