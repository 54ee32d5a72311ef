// Not yet run. The module that go-ole comes with: "go mod tidy" fetches it.
module kesp/samples

go 1.18

require github.com/go-ole/go-ole v1.3.0
