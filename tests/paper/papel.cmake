# Tests of paper size, orientation and forms.
