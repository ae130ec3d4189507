+ qxModelingToolkit 0.1.0 ./qxModelingToolkit
