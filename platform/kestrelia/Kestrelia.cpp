// The scene model and file format of matchmove projects come with their exporters.
