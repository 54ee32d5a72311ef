% Not yet run. Looks for an instrument at an address, shows what is tried, and stops after so many levels of commands.
%
%   detect                         detect('192.168.0.10', 10001, 1)
function detect(host, port, levels)
    if nargin < 1, host = '127.0.0.1'; end
    if nargin < 2, port = 10001; end
    if nargin < 3, levels = 2; end
    dlSCPIOnly = 1;

    tcp = actxserver('KespCommObj.CKespTCP');
    tcp.IPAddress = host;
    tcp.Port = port;
    % However this function ends.
    release = onCleanup(@() delete(tcp));
    registerevent(tcp, {'AutoDetectUpdate' @trying; 'AutoDetectEnd' @ended});

    % As far as the documentation tells, a handler gets a copy of Abort and cannot hand it back. What is left is to go on
    % only by choice: each level adds a command (*IDN?, *VER, t).
    found = false;
    result = '';
    try
        for level = dlSCPIOnly:levels
            [found, result] = tcp.AutoDetect('', level);
            if found, break; end
        end
    catch failure
        fprintf('%s\n', failure.message);
        return
    end
    tcp.Uninitialize;
    if found
        fprintf('reply:       %s\n', result);
    else
        disp('nothing found');
    end
end

% The object, the event's number, its arguments (cmd, IPAddress, Port, Abort), a structure with them, its name.
function trying(varargin)
    fprintf('trying:      %s at %s:%d\n', varargin{3}, varargin{4}, varargin{5});
end

function ended(varargin)
    disp('ended');
end
