// The subset of a USD stage in use comes with the USD exporter.
