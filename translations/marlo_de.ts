<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>CameraSolveFormat</name>
    <message>
        <source>After Effects 3D Motion Data</source>
        <translation>After Effects-3D-Bewegungsdaten</translation>
    </message>
    <message>
        <source>After Effects 3D Motion Data - pre-2025</source>
        <translation>After Effects-3D-Bewegungsdaten - vor 2025</translation>
    </message>
    <message>
        <source>FBX 3D Data for Nuke - 7.7.0</source>
        <translation>FBX-3D-Daten für Nuke - 7.7.0</translation>
    </message>
    <message>
        <source>FBX 3D Data - 6.1.0</source>
        <translation>FBX-3D-Daten - 6.1.0</translation>
    </message>
    <message>
        <source>FBX 3D Data - 7.7.0</source>
        <translation>FBX-3D-Daten - 7.7.0</translation>
    </message>
    <message>
        <source>HitFilm 3D Data</source>
        <translation>HitFilm-3D-Daten</translation>
    </message>
    <message>
        <source>USD 3D Data</source>
        <translation>USD-3D-Daten</translation>
    </message>
    <message>
        <source>Kestrelia 3D Data</source>
        <translation>Kestrelia-3D-Daten</translation>
    </message>
    <message>
        <source>Alembic 3D Data</source>
        <translation>Alembic-3D-Daten</translation>
    </message>
    <message>
        <source>3D Transform Camera Solve Data for After Effects. Generates 3D nulls with transform hierarchy from the &apos;Paste Marlo Camera&apos; option in the After Effects edit menu.</source>
        <translation>3D-Transformationsdaten der Kameraberechnung für After Effects. Erzeugt 3D-Null-Objekte mit Transformationshierarchie über „Paste Marlo Camera“ im Bearbeiten-Menü von After Effects.</translation>
    </message>
    <message>
        <source>3D Transform Camera Solve Data for After Effects. Generates 3D nulls in world space from the &apos;Paste Marlo Camera&apos; option in the After Effects edit menu. Compatible with all versions of the After Effects plugin; not recommended for moving objects with many nulls.</source>
        <translation>3D-Transformationsdaten der Kameraberechnung für After Effects. Erzeugt 3D-Null-Objekte in Weltkoordinaten über „Paste Marlo Camera“ im Bearbeiten-Menü von After Effects. Kompatibel mit allen Versionen des After Effects-Plug-ins; nicht empfohlen für bewegte Objekte mit vielen Null-Objekten.</translation>
    </message>
    <message>
        <source>3D FBX Camera Solve Data for Nuke. Version 7.7.0. A special FBX export for Nuke due to a different axis orientation.</source>
        <translation>3D-Daten der Kameraberechnung als FBX für Nuke. Version 7.7.0. Ein eigener FBX-Export für Nuke, weil dort die Achsen anders ausgerichtet sind.</translation>
    </message>
    <message>
        <source>3D FBX Camera Solve Data. Version 6.1.0.</source>
        <translation>3D-Daten der Kameraberechnung als FBX. Version 6.1.0.</translation>
    </message>
    <message>
        <source>3D FBX Camera Solve Data. Version 7.7.0.</source>
        <translation>3D-Daten der Kameraberechnung als FBX. Version 7.7.0.</translation>
    </message>
    <message>
        <source>FxHome HitFilm 3D Camera Solve Data.</source>
        <translation>3D-Daten der Kameraberechnung für FxHome HitFilm.</translation>
    </message>
    <message>
        <source>USD 3D Camera Solve Data.</source>
        <translation>3D-Daten der Kameraberechnung als USD.</translation>
    </message>
    <message>
        <source>Dorin FX Kestrelia 3D Camera Solve Data.</source>
        <translation>3D-Daten der Kameraberechnung für Dorin FX Kestrelia.</translation>
    </message>
    <message>
        <source>3D Alembic Camera Solve Data</source>
        <translation>3D-Daten der Kameraberechnung als Alembic</translation>
    </message>
</context>
<context>
    <name>Export::AE3DMotionExporter</name>
    <message>
        <source>No 3D solution ready, please solve the scene first</source>
        <translation>Es gibt noch keine 3D-Lösung, bitte zuerst die Szene berechnen</translation>
    </message>
    <message>
        <source>Loading 3D Motion data in After Effects requires the %1 Adobe Plug-In to be installed.&lt;p&gt;If you do not have this Plug-In installed, please download it from &lt;a href=&quot;%2&quot;&gt;%2&lt;/a&gt;.</source>
        <translation>Um 3D-Bewegungsdaten in After Effects zu laden, muss das Adobe-Plug-in %1 installiert sein.&lt;p&gt;Wenn Sie dieses Plug-in nicht installiert haben, laden Sie es bitte herunter von &lt;a href=&quot;%2&quot;&gt;%2&lt;/a&gt;.</translation>
    </message>
    <message>
        <source>Static_auto_features</source>
        <translation>Statische_Auto_Features</translation>
    </message>
    <message>
        <source>Several nulls have one name: %1. What hangs on a null is tied to it by its name, so rename the layers, groups or points.</source>
        <translation>Mehrere Nullobjekte haben denselben Namen: %1. Was an einem Nullobjekt hängt, wird ihm über dessen Namen zugeordnet; bitte Ebenen, Gruppen oder Punkte umbenennen.</translation>
    </message>
    <message>
        <source>These models stand where they would if their layers were at the origin, as this format has no hierarchy: %1</source>
        <translation>Diese Modelle stehen, wo sie stünden, wenn ihre Ebenen im Ursprung wären, weil dieses Format keine Hierarchie hat: %1</translation>
    </message>
    <message>
        <source>The six digits of this format put points up to %1 pixels off. Bring the origin of the scene near to its points.</source>
        <translation>Die sechs Stellen dieses Formats verschieben Punkte um bis zu %1 Pixel. Bitte den Ursprung der Szene in die Nähe ihrer Punkte legen.</translation>
    </message>
</context>
<context>
    <name>Export::CameraSolveExporterFactory</name>
    <message>
        <source>Invalid export format</source>
        <translation>Ungültiges Exportformat</translation>
    </message>
    <message>
        <source>Format with &apos;%1&apos; name already has been registered</source>
        <translation>Ein Format mit dem Namen „%1“ ist bereits registriert</translation>
    </message>
    <message>
        <source>Invalid camera solve format</source>
        <translation>Ungültiges Format für Kameraberechnungen</translation>
    </message>
</context>
<context>
    <name>Export::FBX3DExporterBase</name>
    <message>
        <source>Warning: FBX 7.7.0 does not support %1 fps. Solve will be exported as %2 fps</source>
        <translation>Warnung: FBX 7.7.0 kennt keine %1 Bilder je Sekunde. Die Szene wird mit %2 Bildern je Sekunde exportiert</translation>
    </message>
    <message>
        <source>FBX exporter</source>
        <translation>FBX-Export</translation>
    </message>
    <message>
        <source>The file has no camera, as the solve has none for these views</source>
        <translation>Die Datei hat keine Kamera, da die Lösung keine für diese Ansichten hat</translation>
    </message>
    <message>
        <source>No 3D solution ready, please solve the scene first</source>
        <translation>Es gibt noch keine 3D-Lösung, bitte zuerst die Szene berechnen</translation>
    </message>
    <message>
        <source>Keys of FBX are single floats, so that the camera is up to %1 units and points are about %2 pixels off. Bring the origin of the scene near to the camera.</source>
        <translation>Keyframes von FBX haben einfache Genauigkeit, so dass die Kamera bis zu %1 Einheiten und Punkte etwa %2 Pixel danebenliegen. Lege den Ursprung der Szene in die Nähe der Kamera.</translation>
    </message>
    <message>
        <source>These models stand where they would if their layers, which have no points in this export, were at the origin: %1</source>
        <translation>Diese Modelle stehen so, als wären ihre Ebenen, die in diesem Export keine Punkte haben, im Ursprung: %1</translation>
    </message>
    <message>
        <source>Several objects have one name, so that some got numbers: %1</source>
        <translation>Mehrere Objekte haben denselben Namen, so dass einige eine Nummer bekamen: %1</translation>
    </message>
    <message>
        <source>Could not write to file %1</source>
        <translation>Die Datei %1 konnte nicht geschrieben werden</translation>
    </message>
    <message>
        <source>FBX exporter could not open a temporary file</source>
        <translation>Der FBX-Export konnte keine temporäre Datei öffnen</translation>
    </message>
    <message>
        <source>Export fewer layers, or leave the features out.</source>
        <translation>Exportiere weniger Ebenen oder lasse die Merkmale weg.</translation>
    </message>
</context>
<context>
    <name>Export::LensDataFormat</name>
    <message>
        <source>Marlo XML Lens Data</source>
        <translation>Marlo-XML-Objektivdaten</translation>
    </message>
    <message>
        <source>Marlo Lens for After Effects</source>
        <translation>Marlo Lens für After Effects</translation>
    </message>
    <message>
        <source>Distortion Map Clip</source>
        <translation>Clip mit Verzeichnungskarte</translation>
    </message>
</context>
<context>
    <name>Export::ShapeDataFormat</name>
    <message>
        <source>Invalid export format name</source>
        <translation>Ungültiger Name eines Exportformats</translation>
    </message>
</context>
<context>
    <name>Export::ShapeExporterFactory</name>
    <message>
        <source>Invalid export format</source>
        <translation>Ungültiges Exportformat</translation>
    </message>
    <message>
        <source>Format with &apos;%1&apos; name already has been registered</source>
        <translation>Ein Format mit dem Namen „%1“ ist bereits registriert</translation>
    </message>
    <message>
        <source>Invalid shape data format</source>
        <translation>Ungültiges Format für Formdaten</translation>
    </message>
</context>
<context>
    <name>Export::TrackingDataFormat</name>
    <message>
        <source>Invalid export format name</source>
        <translation>Ungültiger Name eines Exportformats</translation>
    </message>
</context>
<context>
    <name>Export::TrackingExporterFactory</name>
    <message>
        <source>Invalid export format</source>
        <translation>Ungültiges Exportformat</translation>
    </message>
    <message>
        <source>Format with &apos;%1&apos; name already has been registered</source>
        <translation>Ein Format mit dem Namen „%1“ ist bereits registriert</translation>
    </message>
    <message>
        <source>Invalid tracking data format</source>
        <translation>Ungültiges Format für Tracking-Daten</translation>
    </message>
</context>
<context>
    <name>ExportFunctions</name>
    <message>
        <source>Invalid export format name</source>
        <translation>Ungültiger Name eines Exportformats</translation>
    </message>
    <message>
        <source>export</source>
        <translation>export</translation>
    </message>
    <message>
        <source>Cannot write to following paths.
Make sure you have the necessary permissions:
%1</source>
        <translation>In folgende Pfade kann nicht geschrieben werden.
Stellen Sie sicher, dass Sie die nötigen Berechtigungen haben:
%1</translation>
    </message>
    <message>
        <source>Could not write to file %1</source>
        <translation>Die Datei %1 konnte nicht geschrieben werden</translation>
    </message>
</context>
<context>
    <name>KORV_ShakeSSFRotoShapeExporter</name>
    <message>
        <source>X-Splines are not supported</source>
        <translation>X-Splines werden nicht unterstützt</translation>
    </message>
</context>
<context>
    <name>KV::CameraSolveExporter</name>
    <message>
        <source>Include automatic features</source>
        <translation>Automatische Merkmale einschließen</translation>
    </message>
    <message>
        <source>Also export the points that the solver found by itself.</source>
        <translation>Auch die Punkte exportieren, die der Solver selbst gefunden hat.</translation>
    </message>
    <message>
        <source>Use the reference frame of the scene</source>
        <translation>Referenzbild der Szene verwenden</translation>
    </message>
    <message>
        <source>Take the shape of meshes that are exported for one frame only from the frame in which the scene was oriented, not from the current one.</source>
        <translation>Die Form von Netzen, die nur für ein Bild exportiert werden, aus dem Bild nehmen, in dem die Szene ausgerichtet wurde, nicht aus dem aktuellen.</translation>
    </message>
    <message>
        <source>Leave the scene at its origin</source>
        <translation>Szene an ihrem Ursprung lassen</translation>
    </message>
    <message>
        <source>Export camera and points without the position, rotation and scale that were given to the scene as a whole.</source>
        <translation>Kamera und Punkte ohne die Position, Drehung und Skalierung exportieren, die der Szene als Ganzem gegeben wurden.</translation>
    </message>
    <message>
        <source>Point size</source>
        <translation>Punktgröße</translation>
    </message>
    <message>
        <source>How large the markers of points are: in proportion to the scene, or one fixed size.</source>
        <translation>Wie groß die Markierungen der Punkte sind: im Verhältnis zur Szene oder eine feste Größe.</translation>
    </message>
    <message>
        <source>The position of these points is too inaccurate to attach something to them: %1</source>
        <translation>Die Position dieser Punkte ist zu ungenau, um etwas an sie zu heften: %1</translation>
    </message>
    <message>
        <source>The position of these points is too inaccurate to attach something to them: %1 and %2 more</source>
        <translation>Die Position dieser Punkte ist zu ungenau, um etwas an sie zu heften: %1 und %2 weitere</translation>
    </message>
</context>
<context>
    <name>TrackingDataFormat</name>
    <message>
        <source>After Effects CS3 Corner Pin</source>
        <comment>TrackingDataFormat</comment>
        <translation>After Effects CS3-Corner-Pin</translation>
    </message>
    <message>
        <source>After Effects Transform Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>After Effects-Transformationsdaten</translation>
    </message>
    <message>
        <source>Alembic 2D Mesh Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>Alembic-2D-Mesh-Daten</translation>
    </message>
    <message>
        <source>Alembic 2D Vertex Transform</source>
        <comment>TrackingDataFormat</comment>
        <translation>Alembic-2D-Vertex-Transformation</translation>
    </message>
    <message>
        <source>Final Cut Basic Motion - 7.0.0</source>
        <comment>TrackingDataFormat</comment>
        <translation>Final Cut Einfache Bewegung - 7.0.0</translation>
    </message>
    <message>
        <source>Final Cut Distort - 7.0.0</source>
        <comment>TrackingDataFormat</comment>
        <translation>Final Cut Verzerren - 7.0.0</translation>
    </message>
    <message>
        <source>Flame Point Tracker Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>Flame-Punkt-Tracker-Daten</translation>
    </message>
    <message>
        <source>Flame Point Tracker Data - 2014.0.0</source>
        <comment>TrackingDataFormat</comment>
        <translation>Flame-Punkt-Tracker-Daten - 2014.0.0</translation>
    </message>
    <message>
        <source>Flame Axis</source>
        <comment>TrackingDataFormat</comment>
        <translation>Flame-Achse</translation>
    </message>
    <message>
        <source>Shake Tracking Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>Shake-Tracking-Daten</translation>
    </message>
    <message>
        <source>Avid DS Tracking Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>Avid DS-Tracking-Daten</translation>
    </message>
    <message>
        <source>Nuke Ascii</source>
        <comment>TrackingDataFormat</comment>
        <translation>Nuke Ascii</translation>
    </message>
    <message>
        <source>Nuke Corner Pin</source>
        <comment>TrackingDataFormat</comment>
        <translation>Nuke-Corner-Pin</translation>
    </message>
    <message>
        <source>Nuke Tracker Data - 7.0+</source>
        <comment>TrackingDataFormat</comment>
        <translation>Nuke-Tracker-Daten - 7.0+</translation>
    </message>
    <message>
        <source>Nuke WarpLattice to Tracker Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>Nuke-Tracker-Daten aus WarpLattice</translation>
    </message>
    <message>
        <source>XML Motion Matrix Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>XML-Bewegungsmatrixdaten</translation>
    </message>
    <message>
        <source>Quantel Corner Pin Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>Quantel-Corner-Pin-Daten</translation>
    </message>
    <message>
        <source>HitFilm Transform Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>HitFilm-Transformationsdaten</translation>
    </message>
    <message>
        <source>HitFilm Corner Pin with Motion Blur</source>
        <comment>TrackingDataFormat</comment>
        <translation>HitFilm-Corner-Pin mit Bewegungsunschärfe</translation>
    </message>
    <message>
        <source>Fusion Tracker Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>Fusion-Tracker-Daten</translation>
    </message>
    <message>
        <source>After Effects Corner Pin with Motion Blur</source>
        <comment>TrackingDataFormat</comment>
        <translation>After Effects-Corner-Pin mit Bewegungsunschärfe</translation>
    </message>
    <message>
        <source>After Effects CC Power Pin</source>
        <comment>TrackingDataFormat</comment>
        <translation>After Effects CC Power Pin</translation>
    </message>
    <message>
        <source>Vantarium Corner Pin - 11.0.0</source>
        <comment>TrackingDataFormat</comment>
        <translation>Vantarium-Corner-Pin - 11.0.0</translation>
    </message>
    <message>
        <source>Vantarium Center Point - 11.0.0</source>
        <comment>TrackingDataFormat</comment>
        <translation>Vantarium-Mittelpunkt - 11.0.0</translation>
    </message>
    <message>
        <source>After Effects Corner Pin</source>
        <comment>TrackingDataFormat</comment>
        <translation>After Effects-Corner-Pin</translation>
    </message>
    <message>
        <source>Motion Corner Pin</source>
        <comment>TrackingDataFormat</comment>
        <translation>Motion-Corner-Pin</translation>
    </message>
    <message>
        <source>MarloBlend Tracking Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>MarloBlend-Tracking-Daten</translation>
    </message>
    <message>
        <source>Motion Basic Transform Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>Motion-Transformationsdaten (einfach)</translation>
    </message>
    <message>
        <source>Flame Stabilizer Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>Flame-Stabilisierungsdaten</translation>
    </message>
    <message>
        <source>Flame Point Stabilizer Data - 2014.0.0</source>
        <comment>TrackingDataFormat</comment>
        <translation>Flame-Punkt-Stabilisierungsdaten - 2014.0.0</translation>
    </message>
    <message>
        <source>SCRATCH Corner Pin Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>SCRATCH-Corner-Pin-Daten</translation>
    </message>
    <message>
        <source>Flowbox Corner Pin</source>
        <comment>TrackingDataFormat</comment>
        <translation>Flowbox-Corner-Pin</translation>
    </message>
    <message>
        <source>Glimmerset Corner Pin</source>
        <comment>TrackingDataFormat</comment>
        <translation>Glimmerset-Corner-Pin</translation>
    </message>
    <message>
        <source>Kestrelia 2D Tracker Data</source>
        <comment>TrackingDataFormat</comment>
        <translation>Kestrelia-2D-Tracker-Daten</translation>
    </message>
    <message>
        <source>Corner Pin Data for older versions of After Effects.</source>
        <translation>Corner-Pin-Daten für ältere Versionen von After Effects.</translation>
    </message>
    <message>
        <source>Transform Data for After Effects. Translation, Scale and Rotation.</source>
        <translation>Transformationsdaten für After Effects: Position, Skalierung und Drehung.</translation>
    </message>
    <message>
        <source>2D Alembic Mesh Data from WarpLattice tracks. Distorts control points in X/Y plane only.</source>
        <translation>2D-Mesh-Daten für Alembic aus WarpLattice-Tracks. Kontrollpunkte werden nur in der X/Y-Ebene verformt.</translation>
    </message>
    <message>
        <source>2D Alembic Transform Data from WarpLattice tracks. Only vertex transforms, not meshes.</source>
        <translation>2D-Transformationsdaten für Alembic aus WarpLattice-Tracks. Nur Transformationen der Vertices, keine Meshes.</translation>
    </message>
    <message>
        <source>Basic Motion Data for Apple Final Cut 7. This is a Legacy Format and is no longer supported.</source>
        <translation>Daten der einfachen Bewegung für Apple Final Cut 7. Dies ist ein veraltetes Format und wird nicht mehr unterstützt.</translation>
    </message>
    <message>
        <source>Distort Data for Apple Final Cut 7. This is a Legacy Format and is no longer supported.</source>
        <translation>Verzerrungsdaten für Apple Final Cut 7. Dies ist ein veraltetes Format und wird nicht mehr unterstützt.</translation>
    </message>
    <message>
        <source>Autodesk Flame Point Tracker Data.</source>
        <translation>Punkt-Tracker-Daten für Autodesk Flame.</translation>
    </message>
    <message>
        <source>Autodesk Flame Axis Data.</source>
        <translation>Achsendaten für Autodesk Flame.</translation>
    </message>
    <message>
        <source>Shape Tracking Data. This is a Legacy Format and is no longer supported.</source>
        <translation>Tracking-Daten für Shake. Dies ist ein veraltetes Format und wird nicht mehr unterstützt.</translation>
    </message>
    <message>
        <source>Tracking Data for Avid DS Systems. This is a Legacy Format and is no longer supported.</source>
        <translation>Tracking-Daten für Avid DS-Systeme. Dies ist ein veraltetes Format und wird nicht mehr unterstützt.</translation>
    </message>
    <message>
        <source>Nuke Ascii Tracker Data.</source>
        <translation>Tracker-Daten für Nuke als ASCII-Text.</translation>
    </message>
    <message>
        <source>Nuke Corner Pin Data.</source>
        <translation>Corner-Pin-Daten für Nuke.</translation>
    </message>
    <message>
        <source>Nuke Tracker Data.</source>
        <translation>Tracker-Daten für Nuke.</translation>
    </message>
    <message>
        <source>Nuke Tracker Data. Creates a separate tracker per-vertex in a single Tracker node.</source>
        <translation>Tracker-Daten für Nuke. Legt in einem einzigen Tracker-Knoten für jeden Vertex einen eigenen Tracker an.</translation>
    </message>
    <message>
        <source>Quantel Corner Pin Data. This is a Legacy Format and is no longer supported.</source>
        <translation>Corner-Pin-Daten für Quantel. Dies ist ein veraltetes Format und wird nicht mehr unterstützt.</translation>
    </message>
    <message>
        <source>FxHome HitFilm Transform Data.</source>
        <translation>Transformationsdaten für FxHome HitFilm.</translation>
    </message>
    <message>
        <source>FxHome HitFilm Corner Pin Data (Supports Motion Blur).</source>
        <translation>Corner-Pin-Daten für FxHome HitFilm (unterstützt Bewegungsunschärfe).</translation>
    </message>
    <message>
        <source>Blackmagic Fusion Tracker Data.</source>
        <translation>Tracker-Daten für Blackmagic Fusion.</translation>
    </message>
    <message>
        <source>Corner Pin Data for After Effects. Translation, Scale and Rotation keyframes are split out so Motion Blur can be applied.</source>
        <translation>Corner-Pin-Daten für After Effects. Keyframes für Position, Skalierung und Drehung sind getrennt, damit Bewegungsunschärfe angewendet werden kann.</translation>
    </message>
    <message>
        <source>CC Power Pin (Corner Pin) Data for After Effects.</source>
        <translation>CC Power Pin-Daten (Corner-Pin) für After Effects.</translation>
    </message>
    <message>
        <source>Corner Pin Data for Dorin FX Vantarium. This is a Legacy Format and is no longer supported.</source>
        <translation>Corner-Pin-Daten für Dorin FX Vantarium. Dies ist ein veraltetes Format und wird nicht mehr unterstützt.</translation>
    </message>
    <message>
        <source>Transform Data for Dorin FX Vantarium. This is a Legacy Format and is no longer supported.</source>
        <translation>Transformationsdaten für Dorin FX Vantarium. Dies ist ein veraltetes Format und wird nicht mehr unterstützt.</translation>
    </message>
    <message>
        <source>Corner Pin Data for After Effects.</source>
        <translation>Corner-Pin-Daten für After Effects.</translation>
    </message>
    <message>
        <source>Corner Pin Data for Apple Motion.</source>
        <translation>Corner-Pin-Daten für Apple Motion.</translation>
    </message>
    <message>
        <source>MarloBlend Tracking Data.</source>
        <translation>Tracking-Daten für MarloBlend.</translation>
    </message>
    <message>
        <source>Transform Data for Apple Motion.</source>
        <translation>Transformationsdaten für Apple Motion.</translation>
    </message>
    <message>
        <source>Autodesk Flame Stabilizer Data.</source>
        <translation>Stabilisierungsdaten für Autodesk Flame.</translation>
    </message>
    <message>
        <source>Assimilate SCRATCH Corner Pin Data.</source>
        <translation>Corner-Pin-Daten für Assimilate SCRATCH.</translation>
    </message>
    <message>
        <source>Flowbox Corner Pin Data.  This is a Legacy Format and is no longer supported.</source>
        <translation>Corner-Pin-Daten für Flowbox. Dies ist ein veraltetes Format und wird nicht mehr unterstützt.</translation>
    </message>
    <message>
        <source>Dorin FX Glimmerset Corner Pin Data.</source>
        <translation>Corner-Pin-Daten für Dorin FX Glimmerset.</translation>
    </message>
    <message>
        <source>Dorin FX Kestrelia 2D Tracker Data.</source>
        <translation>2D-Tracker-Daten für Dorin FX Kestrelia.</translation>
    </message>
</context>
<context>
    <name>Export::KestreliaSolveExporter</name>
    <message>
        <source>Auto feature tracks will not be exported for this solve; please re-solve to get the required data.</source>
        <translation>Automatische Features werden für diese Lösung nicht exportiert; bitte neu berechnen, um die nötigen Daten zu erhalten.</translation>
    </message>
    <message>
        <source>Could not initialise Kestrelia project</source>
        <translation>Das Kestrelia-Projekt konnte nicht angelegt werden</translation>
    </message>
    <message>
        <source>Empty Kestrelia project</source>
        <translation>Leeres Kestrelia-Projekt</translation>
    </message>
</context>
<context>
    <name>Kestrelia2DTrackersExporter</name>
    <message>
        <source>Could not initialise Kestrelia project</source>
        <translation>Das Kestrelia-Projekt konnte nicht angelegt werden</translation>
    </message>
    <message>
        <source>Names in the project</source>
        <translation>Namen im Projekt</translation>
    </message>
</context>
<context>
    <name>KestreliaNames</name>
    <message>
        <source>%1 and %2 more</source>
        <translation>%1 und %2 weitere</translation>
    </message>
    <message>
        <source>Several things have one name: %1. All but the first got numbers.</source>
        <translation>Mehrere Dinge haben einen Namen: %1. Alle außer dem ersten haben Nummern bekommen.</translation>
    </message>
</context>
<context>
    <name>MatchmoveScene</name>
    <message>
        <source>The camera is the one between the eyes of the stereo rig, which no picture was taken with.</source>
        <translation>Die Kamera ist die zwischen den Augen des Stereo-Rigs, mit der kein Bild aufgenommen wurde.</translation>
    </message>
    <message>
        <source>The file holds the camera of one eye, that of the first view.</source>
        <translation>Die Datei enthält die Kamera eines Auges, die der ersten Ansicht.</translation>
    </message>
    <message>
        <source>A model isn&apos;t exported: %1</source>
        <translation>Ein Modell wird nicht exportiert: %1</translation>
    </message>
</context>
</TS>
