// The link checks of the layer libraries need one source file of their own.
