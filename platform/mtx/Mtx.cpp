// Vectors, matrices, cameras and Euler codes come with the first exporter that needs them.
