// The FBX document writer comes with the FBX exporters.
