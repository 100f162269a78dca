#include "Options.h"

#include "Failure.h"
#include "ImportOptions.h"
#include "OptionTypes.h"

namespace
{

/// Builds the commands and their options, all of which write into one record.
class CommandLine
{
public:
    explicit CommandLine(Options& options)
        : m_options(options), m_app("Exports tracked shots for other programs.", "marlo-export")
    {
        m_app.set_version_flag("--version", "marlo-export " MARLO_VERSION);
        m_app.require_subcommand(1);
        addLanguage(&m_app);
        addFormats();
        addInfo();
        addExport();
        addAll();
        addBatch();
        addPreset();
        addImport();
    }

    /// @return text to print when help or the version was asked for, else empty
    QString parse(int argc, char const* const* argv)
    {
        try
        {
            m_app.parse(argc, argv);
            noteGiven(m_app);
            return QString();
        }
        catch (CLI::CallForHelp const&)
        {
            return QString::fromStdString(m_app.help());
        }
        catch (CLI::CallForVersion const& version)
        {
            return QString::fromUtf8(version.what()) + QLatin1Char('\n');
        }
        catch (CLI::ParseError const& error)
        {
            refuseUnknownCommand();
            throw usageError(oneLine(QString::fromUtf8(error.what())) + QStringLiteral(" (see marlo-export --help)"));
        }
    }

private:
    /// CLI11 would only say that a command is missing.
    void refuseUnknownCommand() const
    {
        CLI::App const* app = &m_app;
        while (!app->get_subcommands().empty())
        {
            app = app->get_subcommands().front();
        }
        auto const subcommands = app->get_subcommands([](CLI::App const*) { return true; });
        std::vector<std::string> const unknown = app->remaining();
        if (subcommands.empty() || unknown.empty() || unknown.front().empty() || unknown.front().front() == '-')
        {
            return;
        }
        QStringList commands;
        for (CLI::App const* command : subcommands)
        {
            commands += fromArgument(command->get_name());
        }
        throw usageError(QStringLiteral("there is no command \"") + fromArgument(unknown.front()) +
                         QStringLiteral("\"; there are ") + commands.join(QStringLiteral(", ")));
    }

    void noteGiven(CLI::App const& parent)
    {
        for (CLI::App const* app : parent.get_subcommands())
        {
            noteGiven(*app);
            for (CLI::Option const* option : app->get_options())
            {
                if (option->count() > 0 && !option->get_lnames().empty())
                {
                    m_options.choices.given += QStringLiteral("--") + fromArgument(option->get_lnames().front());
                }
            }
        }
    }

    void addLanguage(CLI::App* app)
    {
        addText(app, "--lang", "Language of names and messages; default: en",
                [this](QString const& code) { m_options.language = code; })
            ->type_name("CODE");
    }

    CLI::App* addCommand(CLI::App* parent, std::string const& name, std::string const& help, Options::Command command)
    {
        CLI::App* const app = parent->add_subcommand(name, help);
        app->callback([this, command] { m_options.command = command; });
        addLanguage(app);
        return app;
    }

    void addJson(CLI::App* app)
    {
        app->add_flag("--json", m_options.json, "Print the result as JSON");
    }

    void addKind(CLI::App* app)
    {
        Words<QString> const words{
            {"tracking", "tracking"}, {"shape", "shape"}, {"camera", "camera"}, {"lens", "lens"}};
        addChoice(app, "--kind", "Only formats of this kind", words, m_options.kind);
    }

    void addProject(CLI::App* app)
    {
        addText(app, "PROJECT", "Project file", [this](QString const& path) { m_options.project = path; })->required();
    }

    void addFormats()
    {
        CLI::App* const app = addCommand(&m_app, "formats", "List the formats", Options::Formats);
        addKind(app);
        addJson(app);
    }

    void addInfo()
    {
        CLI::App* const app =
            addCommand(&m_app, "info", "Show what a project holds, or all of a format", Options::Info);
        addText(app, "PROJECT", "Project file, or key of a format",
                [this](QString const& path) { m_options.project = path; })
            ->required();
        addJson(app);
    }

    void addExport()
    {
        CLI::App* const app = addCommand(&m_app, "export", "Export to one format", Options::Export);
        addProject(app);
        addFormat(app);
        addText(app, "-o,--output", "File or folder to write, or - for stdout; default: a name from the project",
                [this](QString const& path) { m_options.writing.output = notEmpty("-o", path); })
            ->type_name("PATH");
        addExportOptions(app);
    }

    void addAll()
    {
        CLI::App* const app =
            addCommand(&m_app, "all", "Export to every format that the project can feed", Options::All);
        addProject(app);
        addText(app, "-o,--output", "Folder that gets a folder for each format",
                [this](QString const& path) { m_options.writing.output = notEmpty("-o", path); })
            ->type_name("DIR")
            ->required();
        addKind(app);
        addExportOptions(app);
    }

    void addBatch()
    {
        CLI::App* const app = addCommand(&m_app, "batch", "Run the exports of a presets file", Options::Batch);
        addProject(app);
        addPresetsFile(app);
        addTexts(app, "--preset", "Only the preset of this name; may stand several times; default: all by name",
                 m_options.presets.names)
            ->type_name("NAME");
        addText(app, "-o,--output", "Folder for the files; default: where each export says",
                [this](QString const& path) { m_options.writing.output = notEmpty("-o", path); })
            ->type_name("DIR");
        addRunOptions(app);
    }

    void addPreset()
    {
        CLI::App* const preset = m_app.add_subcommand("preset", "List and change the exports of a presets file");
        preset->require_subcommand(1);
        addLanguage(preset);
        CLI::App* const list = addCommand(preset, "list", "List the presets of a file", Options::PresetList);
        addPresetsFile(list);
        addJson(list);
        addPresetAdd(preset);
        CLI::App* const remove =
            addCommand(preset, "remove", "Remove a preset with all of its exports", Options::PresetRemove);
        addPresetsFile(remove);
        addPresetName(remove);
    }

    void addPresetAdd(CLI::App* preset)
    {
        CLI::App* const app =
            addCommand(preset, "add", "Add an export to a preset; file and preset are made", Options::PresetAdd);
        addPresetsFile(app);
        addPresetName(app);
        addFormat(app);
        addText(app, "-o,--output",
                "File to write, relative to the folder of the presets file; default: a name from the project",
                [this](QString const& path) { m_options.writing.output = notEmpty("-o", path); })
            ->type_name("PATH");
        addLayerOptions(app);
        addTexts(app, "--view", "Number of a view, from 0; may stand several times; default: the current one",
                 m_options.choices.views)
            ->type_name("ID");
        addTrackingOptions(app, "Host frame, from 0 and not as shown, from which relative data start");
        addUnsafeNames(app);
        addObjects(app);
        addFormatOption(app);
    }

    void addPresetsFile(CLI::App* app)
    {
        addText(app, "PRESETS", "Presets file", [this](QString const& path) { m_options.presets.file = path; })
            ->required();
    }

    void addPresetName(CLI::App* app)
    {
        addText(app, "NAME", "Name of the preset",
                [this](QString const& name) { m_options.presets.name = notEmpty("NAME", name); })
            ->required();
    }

    void addFormat(CLI::App* app)
    {
        addText(app, "FORMAT", "Key of the format; `formats` lists them",
                [this](QString const& key) { m_options.format = key; })
            ->required();
    }

    void addExportOptions(CLI::App* app)
    {
        CLI::Option* const layer = addLayerOptions(app);
        addEachLayer(app, layer);
        addTrackingOptions(app, "Frame, as shown, from which relative data start; fields are halves");
        addText(app, "--frames", "Frames, as shown, to export; default: those of the layer, or of the project",
                [this](QString const& text) { m_options.choices.frames = frameRange(text); })
            ->type_name("A-B");
        addObjects(app);
        addClip(app);
        addFormatOption(app);
        addRunOptions(app);
    }

    /// How a run writes and what it tells.
    void addRunOptions(CLI::App* app)
    {
        addWritingOptions(app);
        addJson(app);
        CLI::Option* const quiet = app->add_flag("--quiet", m_options.quiet, "Print nothing but warnings and errors");
        app->add_flag("--verbose", m_options.verbose, "Print what is being done")->excludes(quiet);
    }

    CLI::Option* addLayerOptions(CLI::App* app)
    {
        ExportChoices& choices = m_options.choices;
        CLI::Option* const layer = addText(app, "--layer", "The layer of this name; default: the current one",
                                           [&choices](QString const& name) { choices.layer = name; })
                                       ->type_name("NAME");
        Words<ZN::LayerExportMode> const modes{
            {"selected", ZN::SelectedLayer}, {"visible", ZN::VisibleLayers}, {"all", ZN::AllLayers}};
        addChoice(app, "--layers", "Several layers", modes, choices.layers)->excludes(layer);
        return layer;
    }

    void addEachLayer(CLI::App* app, CLI::Option* layer)
    {
        ExportChoices& choices = m_options.choices;
        app->add_flag("--each-layer", choices.eachLayer,
                      "A file for each layer that --layers reaches (default all); {layer} in -o is its name")
            ->excludes(layer);
        addTexts(app, "--view", "A view, or all; may stand several times; default: the current one", choices.views)
            ->type_name("NAME");
    }

    void addTrackingOptions(CLI::App* app, std::string const& referenceFrameHelp)
    {
        ExportChoices& choices = m_options.choices;
        Words<ZN_TRACKING_OPTION> const motions{{"basic", ZN_TRACKING_OPTION_BASIC},
                                                {"adjusted", ZN_TRACKING_OPTION_ADJUSTED},
                                                {"offset", ZN_TRACKING_OPTION_OFFSET},
                                                {"stabilized", ZN_TRACKING_OPTION_STABILIZED}};
        addChoice(app, "--track", "Motion to export; default: adjusted", motions, choices.track);
        app->add_flag("--invert", choices.invert, "Export the inverse motion");
        app->add_flag("--undistort", choices.undistort, "Take the lens distortion out");
        addText(app, "--reference-frame", referenceFrameHelp,
                [&choices](QString const& text) { choices.referenceFrame = shownFrame("--reference-frame", text); })
            ->type_name("N");
    }

    void addObjects(CLI::App* app)
    {
        Words<KV::CameraSolveExporter::ObjectsToExport> const objects{
            {"selected", KV::CameraSolveExporter::SelectedObjects},
            {"visible", KV::CameraSolveExporter::VisibleObjects},
            {"all", KV::CameraSolveExporter::AllObjects}};
        addChoice(app, "--objects", "Solve objects of camera formats; default: all", objects,
                  m_options.choices.objects);
    }

    void addClip(CLI::App* app)
    {
        addText(app, "--clip", "Clip of lens formats; default: the displayed one",
                [this](QString const& name) { m_options.choices.clip = name; })
            ->type_name("NAME");
    }

    void addFormatOption(CLI::App* app)
    {
        addTexts(app, "--option", "An option of the format; may stand several times", m_options.choices.formatOptions)
            ->type_name("KEY=VALUE");
    }

    void addUnsafeNames(CLI::App* app)
    {
        app->add_flag("--unsafe-names", m_options.writing.unsafeNames,
                      "Write names that would leave their field in the text");
    }

    void addWritingOptions(CLI::App* app)
    {
        WritingChoices& writing = m_options.writing;
        app->add_flag("--overwrite", writing.overwrite, "Replace existing files");
        addUnsafeNames(app);
        app->add_flag("--accept-gaps", writing.acceptGaps, "Frames that hold their neighbour's data are no failures");
        app->add_flag("--strict", writing.strict, "Write nothing when a frame fails");
        app->add_flag("--dry-run", writing.dryRun, "Do everything but write");
    }

    void addImport()
    {
        CLI::App* const import = m_app.add_subcommand("import", "Make a project of other programs' data");
        import->require_subcommand(1);
        addLanguage(import);
        CLI::App* const corners =
            addCommand(import, "corners", "Make a project of a table of corners", Options::ImportCorners);
        addCornerOptions(corners, m_options.corners);
        CLI::App* const colmap =
            addCommand(import, "colmap", "Make a project of a camera solve of COLMAP", Options::ImportColmap);
        addColmapOptions(colmap, m_options.colmap);
        for (CLI::App* const app : {corners, colmap})
        {
            addJson(app);
            app->add_flag("--quiet", m_options.quiet, "Print nothing but warnings and errors");
        }
    }

    Options& m_options;
    CLI::App m_app;
};

}

std::optional<Options> parseOptions(int argc, char const* const* argv, QString& text)
{
    Options options;
    text = CommandLine(options).parse(argc, argv);
    return text.isEmpty() ? std::make_optional(options) : std::nullopt;
}
