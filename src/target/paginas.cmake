# A printer whose pages are images.
