# Tests of the image-page printer and of suppressed output.
