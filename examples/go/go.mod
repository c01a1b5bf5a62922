module host

go 1.19
