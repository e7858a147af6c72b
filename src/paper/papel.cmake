# Paper size, orientation and the forms of the print system.
