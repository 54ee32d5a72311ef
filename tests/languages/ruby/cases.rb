# How a case of the client matrix is judged and told, and what several of them need.

# Runs a case and prints its line.
def show(name)
  yield
  puts "PASS #{name}"
rescue StandardError => e
  puts "FAIL #{name}: #{e.message.gsub(/\s+/, ' ')}"
end

def check(what)
  raise what unless yield
end

def equal(what, found, expected)
  raise "#{what} is #{found.inspect}, not #{expected.inspect}" unless found == expected
end

# Number, source and text of the error that the block raises. Ruby has them in the message only.
def refused(what)
  yield
rescue WIN32OLERuntimeError => e
  number, source, text = e.message.match(/OLE error code:(\h{8}) in (.*)\n\s*(.*)\n/)&.captures
  number ||= e.message[/HRESULT error code:0x(\h{8})/, 1]
  [[number.hex].pack('L').unpack1('l'), source, text]
else
  raise what
end

def make(name)
  WIN32OLE.new("KespCommObj.#{name}")
end

# A variable for a text by reference.
def text_variable
  WIN32OLE_VARIANT.new('', WIN32OLE::VARIANT::VT_BSTR | WIN32OLE::VARIANT::VT_BYREF)
end

# Lets an object with a handler detect: returns what AutoDetect says, the reply, and the events of the detection, each
# with its arguments. What the block returns goes to the library.
def detect
  tcp = connected(make('CKespTCP'))
  seen = []
  events = WIN32OLE_EVENT.new(tcp, '__CKespTCP')
  events.on_event do |event, *arguments|
    seen << [event, *arguments] if event.start_with?('AutoDetect')
    yield event
  end
  reply = text_variable
  found = tcp.AutoDetect(reply)
  events.unadvise
  tcp.Uninitialize
  [found, reply.value, seen]
end
